// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieContainer.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

Error failure(int averror) {
    return Error{reasonOf(averror)};
}

/// With a protocol in front, no path can be mistaken for something else than a file.
std::string urlOf(const std::filesystem::path& path) {
    return "file:" + path.string();
}

/// Ticks per second of the file's clock: many, as players expect, and whole ones per frame, so that no time is rounded.
int ticksPerSecond(int framesPerSecond) {
    int ticks = framesPerSecond;
    while (ticks < 10000) {
        ticks *= 2;
    }
    return ticks;
}

} // namespace

Result<MovieContainer> MovieContainer::open(const std::filesystem::path& path, const AVCodecParameters& parameters,
                                            int framesPerSecond, MovieLayout layout) {
    forwardLibavLog();
    MovieContainer container(layout, {1, framesPerSecond});
    if (auto opened = container.openFile(path); !opened) {
        return opened.error();
    }
    if (auto started = container.start(parameters); !started) {
        return started.error();
    }
    return container;
}

Result<void> MovieContainer::openFile(const std::filesystem::path& path) {
    const std::string url = urlOf(path);
    AVFormatContext* container = nullptr;
    if (const int error = avformat_alloc_output_context2(&container, nullptr, "mp4", url.c_str()); error < 0) {
        return failure(error);
    }
    m_container.reset(container);
    // Without this, the libraries' versions would be in the file.
    m_container->flags |= AVFMT_FLAG_BITEXACT;
    if (const int error = avio_open(&m_container->pb, url.c_str(), AVIO_FLAG_WRITE); error < 0) {
        return failure(error);
    }
    return {};
}

Result<void> MovieContainer::start(const AVCodecParameters& parameters) {
    m_stream = avformat_new_stream(m_container.get(), nullptr);
    if (m_stream == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    if (const int error = avcodec_parameters_copy(m_stream->codecpar, &parameters); error < 0) {
        return failure(error);
    }
    m_stream->codecpar->codec_tag = 0; // The container chooses.
    const int ticks = ticksPerSecond(m_frameDuration.den);
    m_stream->time_base = {1, ticks};
    m_stream->avg_frame_rate = av_inv_q(m_frameDuration);
    m_stream->r_frame_rate = m_stream->avg_frame_rate;
    m_stream->sample_aspect_ratio = parameters.sample_aspect_ratio;
    AVDictionary* options = nullptr;
    const bool fragmented = m_layout == MovieLayout::Fragmented;
    av_dict_set(&options, "movflags",
                fragmented ? "+empty_moov+frag_custom+default_base_moof+skip_trailer" : "+faststart", 0);
    av_dict_set_int(&options, "movie_timescale", ticks, 0);
    av_dict_set_int(&options, "video_track_timescale", ticks, 0);
    const int error = avformat_write_header(m_container.get(), &options);
    av_dict_free(&options);
    avio_flush(m_container->pb);
    return outcomeOf(error);
}

/// Writes go through a buffer, which keeps the error of an earlier one to itself.
Result<void> MovieContainer::outcomeOf(int averror) const {
    if (averror >= 0 && m_container->pb->error >= 0) {
        return {};
    }
    return failure(averror < 0 ? averror : m_container->pb->error);
}

Result<void> MovieContainer::write(AVPacket& packet) {
    m_lastShown = std::max(m_lastShown, packet.pts);
    packet.stream_index = m_stream->index;
    av_packet_rescale_ts(&packet, m_frameDuration, m_stream->time_base);
    if (auto written = outcomeOf(av_write_frame(m_container.get(), &packet)); !written) {
        return written;
    }
    ++m_written;
    const bool complete = m_lastShown + 1 == m_written;
    return m_layout == MovieLayout::Fragmented && complete ? endFragment() : Result<void>();
}

Result<void> MovieContainer::endFragment() {
    const int error = av_write_frame(m_container.get(), nullptr);
    avio_flush(m_container->pb);
    return outcomeOf(error);
}

Result<void> MovieContainer::finish() {
    assert(m_container->pb != nullptr);
    const int trailerError = av_write_trailer(m_container.get());
    const int closeError = avio_closep(&m_container->pb);
    if (trailerError < 0 || closeError < 0) {
        return failure(trailerError < 0 ? trailerError : closeError);
    }
    return {};
}

Result<MovieReader> MovieReader::open(const std::filesystem::path& path, int framesPerSecond) {
    forwardLibavLog();
    const AVInputFormat* format = av_find_input_format("mp4");
    AVFormatContext* input = nullptr;
    if (const int error = avformat_open_input(&input, urlOf(path).c_str(), format, nullptr); error < 0) {
        return failure(error);
    }
    MovieReader reader;
    reader.m_input.reset(input);
    reader.m_packet.reset(av_packet_alloc());
    if (reader.m_packet == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    const bool oneMovie = input->nb_streams == 1 && input->streams[0]->codecpar->codec_id == AV_CODEC_ID_H264 &&
                          input->streams[0]->codecpar->width > 0 && framesPerSecond > 0;
    if (!oneMovie) {
        return failure(AVERROR_INVALIDDATA);
    }
    reader.m_stream = input->streams[0];
    // A guess, which would be written down as a fact.
    reader.m_stream->codecpar->bit_rate = 0;
    // The library keeps this one elsewhere when it reads.
    reader.m_stream->codecpar->sample_aspect_ratio = reader.m_stream->sample_aspect_ratio;
    reader.m_frameDuration = {1, framesPerSecond};
    return reader;
}

AVPacket* MovieReader::next() {
    av_packet_unref(m_packet.get());
    if (av_read_frame(m_input.get(), m_packet.get()) < 0 || (m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0 ||
        m_packet->pts == AV_NOPTS_VALUE || m_packet->dts == AV_NOPTS_VALUE) {
        return nullptr;
    }
    av_packet_rescale_ts(m_packet.get(), m_stream->time_base, m_frameDuration);
    // A fragmented file begins later, by as much as the encoder changes the order of frames.
    if (!m_firstTime) {
        m_firstTime = m_packet->pts;
    }
    m_packet->pts -= *m_firstTime;
    m_packet->dts -= *m_firstTime;
    m_packet->duration = 1;
    return m_packet.get();
}

Result<std::int64_t> copyMovie(const std::filesystem::path& from, const std::filesystem::path& to, int framesPerSecond,
                               const std::function<bool()>& goesOn) {
    auto reader = MovieReader::open(from, framesPerSecond);
    if (!reader) {
        return reader.error();
    }
    auto container = MovieContainer::open(to, reader.value().parameters(), framesPerSecond, MovieLayout::Regular);
    if (!container) {
        return container.error();
    }
    // What waits for a frame that comes before it.
    std::vector<PacketPointer> waiting;
    std::int64_t read = 0;
    std::int64_t lastShown = -1;
    while (AVPacket* packet = reader.value().next()) {
        if (!goesOn()) {
            return Error{"stopped"};
        }
        ++read;
        lastShown = std::max(lastShown, packet->pts);
        waiting.emplace_back(av_packet_clone(packet));
        if (waiting.back() == nullptr) {
            return failure(AVERROR(ENOMEM));
        }
        if (lastShown + 1 != read) {
            continue;
        }
        for (const PacketPointer& ready : waiting) {
            if (auto written = container.value().write(*ready); !written) {
                return written.error();
            }
        }
        waiting.clear();
    }
    if (auto finished = container.value().finish(); !finished) {
        return finished.error();
    }
    return container.value().writtenFrames();
}

} // namespace starbloom
