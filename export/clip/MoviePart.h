// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "export/clip/ClipContainer.h"
#include "export/clip/ClipWriter.h"
#include "export/movie/LibavSupport.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace starbloom {

/// An Error about a part, for a reason that is known elsewhere.
Error cannotJoin(const std::filesystem::path& part, const std::string& why);

/// One of several movies that are to be joined, read packet by packet. The file is not trusted to be a movie.
///
/// Error messages name the file. One thread at a time.
class MoviePart {
public:
    static Result<MoviePart> open(const std::filesystem::path& path, ContainerKind container);

    /// What this part has other than the first one; empty when they fit together.
    std::string differenceTo(const MoviePart& first) const;

    /// The next packet in the order of decoding, its time of showing in frames from 0, its time of decoding unknown;
    /// null at the end. Valid until the next call. Fails where the part has no whole frames.
    Result<AVPacket*> next();

    const std::filesystem::path& path() const { return m_path; }

    const AVCodecParameters& parameters() const { return *m_stream->codecpar; }

    bool hasAlpha() const;

    FrameRate rate() const { return {m_rate.num, m_rate.den}; }

    /// How many frames the first one is decoded ahead of its time. Fails without a first frame.
    Result<std::int64_t> delay();

private:
    MoviePart() = default;

    Result<bool> read();
    Result<AVPacket*> ended() const;
    bool isWhole() const;

    std::int64_t inFrames(std::int64_t time) const {
        return av_rescale_q_rnd(time, m_stream->time_base, av_inv_q(m_rate), AV_ROUND_NEAR_INF);
    }

    std::filesystem::path m_path;
    InputPointer m_input;
    PacketPointer m_packet;
    AVStream* m_stream = nullptr; ///< owned by the input
    AVRational m_rate{};
    bool m_isAhead = false; ///< Whether the packet has been read, but not given yet.
    std::int64_t m_firstTime = 0;
    std::int64_t m_frames = 0;
    std::int64_t m_lastShown = -1;
    std::int64_t m_sumOfTimes = 0;
};

} // namespace starbloom
