// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "export/movie/LibavSupport.h"
#include "export/movie/MovieFormat.h"
#include "export/movie/YuvConverter.h"

#include <cstdint>
#include <functional>

namespace starbloom {

/// Takes pictures and gives H.264 packets, in units of one frame: packet times count frames, and each packet lasts one.
/// The encoder looks ahead, so packets come some frames later than their pictures, in the order of decoding.
///
/// Errors are the reason alone, in the library's words. One thread at a time; its own threads end with it.
class MovieEncoder {
public:
    /// Called for each packet that is ready, which may be changed; a failure ends the call that led to it.
    using PacketSink = std::function<Result<void>(AVPacket& packet)>;

    /// Fails for sizes and rates out of range, and when there is no H.264 encoder.
    static Result<MovieEncoder> open(const MovieFormat& format);

    /// The picture is not needed any more afterwards; alpha is ignored. One of another size than the format's is
    /// refused, and it can go on without it.
    Result<void> encode(const ImageBuffer& image, const PacketSink& sink);

    /// Gives the packets that are left. The last call.
    Result<void> drain(const PacketSink& sink);

    /// What the container has to know.
    const AVCodecContext& context() const { return *m_context; }

    std::int64_t frameCount() const { return m_frameCount; }

private:
    explicit MovieEncoder(const MovieFormat& format);
    Result<void> openContext();
    Result<void> makeFrame();
    Result<void> send(const AVFrame* frame, const PacketSink& sink);

    MovieFormat m_format;
    YuvMatrix m_matrix;
    EncoderPointer m_context;
    FramePointer m_frame;
    PacketPointer m_packet;
    std::int64_t m_frameCount = 0;
};

} // namespace starbloom
