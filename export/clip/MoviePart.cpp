// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/MoviePart.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace starbloom {

Error cannotJoin(const std::filesystem::path& part, const std::string& why) {
    return Error{"cannot join " + part.string() + ": " + why};
}

Result<MoviePart> MoviePart::open(const std::filesystem::path& path, ContainerKind container) {
    forwardLibavLog();
    MoviePart part;
    part.m_path = path;
    const AVInputFormat* format = av_find_input_format(container == ContainerKind::WebM ? "webm" : "mov");
    AVFormatContext* input = nullptr;
    if (const int error = avformat_open_input(&input, urlOf(path).c_str(), format, nullptr); error < 0) {
        return cannotJoin(path, reasonOf(error));
    }
    part.m_input.reset(input);
    part.m_packet.reset(av_packet_alloc());
    if (part.m_packet == nullptr) {
        return cannotJoin(path, reasonOf(AVERROR(ENOMEM)));
    }
    if (const int error = avformat_find_stream_info(input, nullptr); error < 0) {
        return cannotJoin(path, reasonOf(error));
    }
    if (input->nb_streams != 1 || input->streams[0]->codecpar->codec_type != AVMEDIA_TYPE_VIDEO) {
        return cannotJoin(path, "it is not a movie without sound");
    }
    part.m_stream = input->streams[0];
    part.m_rate = part.m_stream->avg_frame_rate.num > 0 ? part.m_stream->avg_frame_rate : part.m_stream->r_frame_rate;
    if (part.m_rate.num < 1 || part.m_rate.den < 1 || part.m_stream->codecpar->width < 1) {
        return cannotJoin(path, "its frames have no rate or no size");
    }
    return part;
}

bool MoviePart::hasAlpha() const {
    const AVDictionaryEntry* entry = av_dict_get(m_stream->metadata, "alpha_mode", nullptr, 0);
    return entry != nullptr && std::string_view(entry->value) == "1";
}

std::string MoviePart::differenceTo(const MoviePart& first) const {
    const AVCodecParameters& mine = parameters();
    const AVCodecParameters& other = first.parameters();
    if (mine.codec_id != other.codec_id) {
        return "codec";
    }
    if (mine.width != other.width || mine.height != other.height) {
        return "size";
    }
    if (av_cmp_q(m_rate, first.m_rate) != 0) {
        return "frame rate";
    }
    if (mine.format != other.format || hasAlpha() != first.hasAlpha()) {
        return "kind of pixels";
    }
    if (mine.color_range != other.color_range || mine.color_space != other.color_space ||
        mine.color_trc != other.color_trc || mine.color_primaries != other.color_primaries) {
        return "kind of colours";
    }
    const auto settingsOf = [](const AVCodecParameters& parameters) {
        return std::string_view(reinterpret_cast<const char*>(parameters.extradata),
                                static_cast<std::size_t>(std::max(parameters.extradata_size, 0)));
    };
    const bool sameEncoder = mine.profile == other.profile && settingsOf(mine) == settingsOf(other);
    return sameEncoder ? std::string() : "encoder setting";
}

/// Reads a packet unless one waits; false at the end.
Result<bool> MoviePart::read() {
    if (m_isAhead) {
        return true;
    }
    av_packet_unref(m_packet.get());
    const int error = av_read_frame(m_input.get(), m_packet.get());
    if (error == AVERROR_EOF) {
        return false;
    }
    if (error < 0) {
        return cannotJoin(m_path, reasonOf(error));
    }
    if ((m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0 || m_packet->pts == AV_NOPTS_VALUE) {
        return cannotJoin(m_path, "it is damaged");
    }
    if (m_frames == 0) {
        if ((m_packet->flags & AV_PKT_FLAG_KEY) == 0) {
            return cannotJoin(m_path, "its first frame cannot be shown alone");
        }
        m_firstTime = inFrames(m_packet->pts);
    }
    m_isAhead = true;
    return true;
}

Result<std::int64_t> MoviePart::delay() {
    const auto isThere = read();
    if (!isThere || !isThere.value()) {
        return isThere ? cannotJoin(m_path, "it has no frames") : isThere.error();
    }
    return m_packet->dts == AV_NOPTS_VALUE ? 0 : m_firstTime - inFrames(m_packet->dts);
}

Result<AVPacket*> MoviePart::next() {
    const auto isThere = read();
    if (!isThere) {
        return isThere.error();
    }
    if (!isThere.value()) {
        return ended();
    }
    m_isAhead = false;
    m_packet->pts = inFrames(m_packet->pts) - m_firstTime;
    m_packet->dts = AV_NOPTS_VALUE;
    m_lastShown = std::max(m_lastShown, m_packet->pts);
    m_sumOfTimes += m_packet->pts;
    ++m_frames;
    return m_packet.get();
}

/// Whether the frames that were read are 0, 1, 2 and so on, in whatever order, and as many as the file tells of.
bool MoviePart::isWhole() const {
    const bool allShown = m_lastShown == m_frames - 1 && m_sumOfTimes == m_frames * (m_frames - 1) / 2;
    // WebM has a length, in thousandths of a second, in place of a number.
    const std::int64_t length = m_input->duration == AV_NOPTS_VALUE
                                    ? m_frames
                                    : av_rescale_q(m_input->duration, AV_TIME_BASE_Q, av_inv_q(m_rate));
    const bool allThere = m_stream->nb_frames > 0 ? m_frames == m_stream->nb_frames : std::abs(m_frames - length) <= 1;
    return allShown && allThere;
}

Result<AVPacket*> MoviePart::ended() const {
    return isWhole() ? Result<AVPacket*>(nullptr) : cannotJoin(m_path, "frames are missing in it");
}

} // namespace starbloom
