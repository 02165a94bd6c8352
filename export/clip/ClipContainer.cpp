// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipContainer.h"

#include <cerrno>

namespace starbloom {

namespace {

Error failure(int averror) {
    return Error{reasonOf(averror)};
}

const char* nameOf(ContainerKind kind) {
    switch (kind) {
    case ContainerKind::Mpeg4:
        return "mp4";
    case ContainerKind::QuickTime:
        return "mov";
    case ContainerKind::WebM:
        return "webm";
    }
    return nullptr;
}

/// The four letters by which a file names its codec; 0 leaves them to the container, which knows the usual ones.
unsigned tagOf(const AVCodecParameters& parameters, ContainerKind kind) {
    // Without a tag, QuickTime files call every ProRes 422 HQ, and editors believe them. Ours has 4:4:4 always.
    const bool isProRes = kind == ContainerKind::QuickTime && parameters.codec_id == AV_CODEC_ID_PRORES;
    return isProRes ? MKTAG('a', 'p', '4', 'h') : 0;
}

/// Ticks per second of the file's clock: many, as players expect, and whole ones per frame, so that no time is rounded.
int ticksPerSecond(int frames) {
    int ticks = frames;
    while (ticks < 10000) {
        ticks *= 2;
    }
    return ticks;
}

} // namespace

std::string urlOf(const std::filesystem::path& path) {
    return "file:" + path.string();
}

Result<ClipContainer> ClipContainer::open(const std::filesystem::path& path, ContainerKind kind,
                                          const AVCodecParameters& parameters, FrameRate rate, bool hasAlpha) {
    forwardLibavLog();
    ClipContainer container(rate);
    const std::string url = urlOf(path);
    AVFormatContext* context = nullptr;
    if (const int error = avformat_alloc_output_context2(&context, nullptr, nameOf(kind), url.c_str()); error < 0) {
        return failure(error);
    }
    container.m_container.reset(context);
    // Without this, the libraries' versions would be in the file.
    context->flags |= AVFMT_FLAG_BITEXACT;
    if (const int error = avio_open(&context->pb, url.c_str(), AVIO_FLAG_WRITE); error < 0) {
        return failure(error);
    }
    if (auto added = container.addStream(parameters, kind); !added) {
        return added.error();
    }
    if (hasAlpha && kind == ContainerKind::WebM) {
        av_dict_set(&container.m_stream->metadata, "alpha_mode", "1", 0);
    }
    if (auto begun = container.writeHeader(kind); !begun) {
        return begun.error();
    }
    return container;
}

Result<void> ClipContainer::addStream(const AVCodecParameters& parameters, ContainerKind kind) {
    m_stream = avformat_new_stream(m_container.get(), nullptr);
    if (m_stream == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    if (const int error = avcodec_parameters_copy(m_stream->codecpar, &parameters); error < 0) {
        return failure(error);
    }
    m_stream->codecpar->codec_tag = tagOf(parameters, kind);
    m_stream->codecpar->bit_rate = 0; // A guess, which would be written down as a fact.
    m_stream->time_base = {1, ticksPerSecond(m_frameDuration.den)};
    m_stream->avg_frame_rate = av_inv_q(m_frameDuration);
    m_stream->r_frame_rate = m_stream->avg_frame_rate;
    m_stream->codecpar->sample_aspect_ratio = {1, 1};
    m_stream->sample_aspect_ratio = {1, 1};
    return {};
}

Result<void> ClipContainer::writeHeader(ContainerKind kind) {
    AVDictionary* options = nullptr;
    if (kind != ContainerKind::WebM) {
        av_dict_set_int(&options, "movie_timescale", m_stream->time_base.den, 0);
        av_dict_set_int(&options, "video_track_timescale", m_stream->time_base.den, 0);
    }
    if (kind == ContainerKind::Mpeg4) {
        av_dict_set(&options, "movflags", "+faststart", 0);
    }
    const int error = avformat_write_header(m_container.get(), &options);
    av_dict_free(&options);
    return error < 0 ? failure(error) : Result<void>();
}

Result<void> ClipContainer::write(AVPacket& packet) {
    packet.duration = 1;
    packet.stream_index = m_stream->index;
    packet.pos = -1;
    av_packet_rescale_ts(&packet, m_frameDuration, m_stream->time_base);
    const int error = av_write_frame(m_container.get(), &packet);
    // Writes go through a buffer, which keeps the error of an earlier one to itself.
    if (error < 0 || m_container->pb->error < 0) {
        return failure(error < 0 ? error : m_container->pb->error);
    }
    return {};
}

Result<void> ClipContainer::finish() {
    const int trailerError = av_write_trailer(m_container.get());
    const int closeError = avio_closep(&m_container->pb);
    if (trailerError < 0 || closeError < 0) {
        return failure(trailerError < 0 ? trailerError : closeError);
    }
    return {};
}

} // namespace starbloom
