// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/BatchClipWriter.h"
#include "export/clip/ClipPixels.h"
#include "export/clip/FormatWriters.h"
#include "export/movie/LibavSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

extern "C" {
#include <libavutil/opt.h>
}

namespace starbloom {

namespace {

using ByteSpan = std::span<const std::byte>;

/// How hard the encoder tries, 0 to 6. At 0, frames take a fifth to a half of the time, but lossless ones grow by a
/// third; at 4, they take twice to three times as long for 6 % less.
constexpr int effort = 2;

constexpr std::size_t riffHeaderSize = 12;
constexpr std::size_t chunkHeaderSize = 8;

void appendNumber(std::vector<std::byte>& bytes, std::uint32_t number, int size) {
    for (int i = 0; i < size; ++i, number >>= 8U) {
        bytes.push_back(static_cast<std::byte>(number));
    }
}

void append(std::vector<std::byte>& bytes, ByteSpan more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void append(std::vector<std::byte>& bytes, std::string_view name) {
    append(bytes, std::as_bytes(std::span(name)));
}

/// The chunks of a still picture that hold its pixels: all behind the header, but for the one that repeats the size.
ByteSpan pixelChunks(ByteSpan webp) {
    ByteSpan chunks = webp.subspan(riffHeaderSize);
    constexpr std::size_t extendedSize = chunkHeaderSize + 10;
    const bool extended = chunks.size() > extendedSize && std::to_integer<char>(chunks[3]) == 'X';
    return extended ? chunks.subspan(extendedSize) : chunks;
}

Error failure(int averror) {
    return Error{reasonOf(averror)};
}

/// Opens the encoder for one picture. Quality 1 is lossless.
Result<EncoderPointer> openEncoder(int width, int height, double quality) {
    const AVCodec* codec = avcodec_find_encoder_by_name("libwebp");
    if (codec == nullptr) {
        return Error{"the WebP encoder is missing"};
    }
    EncoderPointer encoder(avcodec_alloc_context3(codec));
    if (encoder == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    encoder->width = width;
    encoder->height = height;
    encoder->pix_fmt = AV_PIX_FMT_BGRA;
    // It would warn with every picture that it has to convert it; its errors stay in the log.
    encoder->log_level_offset = AV_LOG_INFO - AV_LOG_WARNING;
    encoder->time_base = {1, 1};
    encoder->compression_level = effort;
    av_opt_set_int(encoder->priv_data, "lossless", quality >= 1.0 ? 1 : 0, 0);
    av_opt_set_double(encoder->priv_data, "quality", quality >= 1.0 ? 20.0 : 100.0 * quality, 0);
    if (const int error = avcodec_open2(encoder.get(), codec, nullptr); error < 0) {
        return failure(error);
    }
    return encoder;
}

void copyAsBgra(const ImageBuffer& picture, AVFrame& frame) {
    for (int y = 0; y < picture.height(); ++y) {
        const std::uint8_t* from = picture.row(y);
        std::uint8_t* to = frame.data[0] + static_cast<std::ptrdiff_t>(y) * frame.linesize[0];
        for (int x = 0; x < picture.width(); ++x, from += ImageBuffer::channels, to += ImageBuffer::channels) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
            to[3] = from[3];
        }
    }
}

/// Encodes a picture as a still one.
Result<std::vector<std::byte>> encodeWebP(const ImageBuffer& picture, double quality) {
    auto encoder = openEncoder(picture.width(), picture.height(), quality);
    if (!encoder) {
        return encoder.error();
    }
    const FramePointer frame(av_frame_alloc());
    const PacketPointer packet(av_packet_alloc());
    if (frame == nullptr || packet == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    frame->format = AV_PIX_FMT_BGRA;
    frame->width = picture.width();
    frame->height = picture.height();
    if (const int error = av_frame_get_buffer(frame.get(), 0); error < 0) {
        return failure(error);
    }
    copyAsBgra(picture, *frame);
    int error = avcodec_send_frame(encoder.value().get(), frame.get());
    if (error >= 0) {
        error = avcodec_receive_packet(encoder.value().get(), packet.get());
    }
    if (error < 0) {
        return failure(error);
    }
    const auto bytes = std::as_bytes(std::span(packet->data, static_cast<std::size_t>(packet->size)));
    return std::vector(bytes.begin(), bytes.end());
}

/// An animation's frames are the chunks of still pictures, wrapped in one that tells of place and time.
class WebPClipWriter final : public BatchClipWriter {
public:
    WebPClipWriter(ClipOutput output, const ClipSettings& settings)
        : BatchClipWriter(2)
        , m_output(std::move(output))
        , m_settings(settings) {}

    Result<void> begin();

private:
    Result<Bytes> encode(FramePiece& piece) const override;
    Result<void> write(const FramePiece& piece, const Bytes& encoded) override;
    Result<void> close() override;

    Result<void> put(const Bytes& bytes);
    std::int64_t milliseconds(std::int64_t frame) const;

    ClipOutput m_output;
    ClipSettings m_settings;
    std::int64_t m_frames = 0;
    std::uint64_t m_size = 0;
};

Result<void> WebPClipWriter::begin() {
    forwardLibavLog();
    Bytes bytes;
    append(bytes, "RIFF");
    appendNumber(bytes, 0, 4); // close() knows
    append(bytes, "WEBPVP8X");
    appendNumber(bytes, 10, 4);
    constexpr std::uint32_t animated = 0x02;
    constexpr std::uint32_t hasAlpha = 0x10;
    appendNumber(bytes, m_settings.alpha == AlphaMode::Opaque ? animated : animated | hasAlpha, 4);
    appendNumber(bytes, static_cast<std::uint32_t>(m_settings.width - 1), 3);
    appendNumber(bytes, static_cast<std::uint32_t>(m_settings.height - 1), 3);
    append(bytes, "ANIM");
    appendNumber(bytes, 6, 4);
    appendNumber(bytes, 0, 4); // nothing behind the pictures
    appendNumber(bytes, 0, 2); // for ever
    return put(bytes);
}

Result<void> WebPClipWriter::put(const Bytes& bytes) {
    m_size += bytes.size();
    // The size is a number of 32 bits.
    if (m_size > std::numeric_limits<std::uint32_t>::max()) {
        return m_output.failure("a WebP has at most 4 GiB");
    }
    return m_output.write(bytes);
}

/// When a frame begins. Rounding moments, not lengths, keeps a long clip on time.
std::int64_t WebPClipWriter::milliseconds(std::int64_t frame) const {
    const std::int64_t frames = m_settings.rate.frames;
    return (frame * 1000 * m_settings.rate.seconds + frames / 2) / frames;
}

Result<WebPClipWriter::Bytes> WebPClipWriter::encode(FramePiece& piece) const {
    applyAlpha(piece.picture, m_settings.alpha);
    auto webp = encodeWebP(piece.picture, m_settings.quality);
    return webp ? std::move(webp) : Result<Bytes>(m_output.failure(webp.error().message));
}

Result<void> WebPClipWriter::write(const FramePiece& piece, const Bytes& encoded) {
    const ByteSpan chunks = pixelChunks(encoded);
    constexpr std::uint32_t frameHeaderSize = 16;
    constexpr std::uint32_t replaces = 0x02;
    Bytes bytes;
    append(bytes, "ANMF");
    appendNumber(bytes, static_cast<std::uint32_t>(frameHeaderSize + chunks.size()), 4);
    appendNumber(bytes, static_cast<std::uint32_t>(piece.x / 2), 3);
    appendNumber(bytes, static_cast<std::uint32_t>(piece.y / 2), 3);
    appendNumber(bytes, static_cast<std::uint32_t>(piece.picture.width() - 1), 3);
    appendNumber(bytes, static_cast<std::uint32_t>(piece.picture.height() - 1), 3);
    appendNumber(bytes, static_cast<std::uint32_t>(milliseconds(m_frames + 1) - milliseconds(m_frames)), 3);
    appendNumber(bytes, replaces, 1);
    append(bytes, chunks);
    ++m_frames;
    return put(bytes);
}

Result<void> WebPClipWriter::close() {
    Bytes size;
    appendNumber(size, static_cast<std::uint32_t>(m_size - chunkHeaderSize), 4);
    if (auto told = m_output.rewrite(4, size); !told) {
        return told;
    }
    return m_output.finish();
}

} // namespace

MadeClipWriter makeWebPClipWriter(ClipOutput output, const ClipSettings& settings) {
    auto writer = std::make_unique<WebPClipWriter>(std::move(output), settings);
    if (auto begun = writer->begin(); !begun) {
        return begun.error();
    }
    return std::unique_ptr<ClipWriter>(std::move(writer));
}

} // namespace starbloom
