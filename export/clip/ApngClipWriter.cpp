// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/BatchClipWriter.h"
#include "export/clip/ClipPixels.h"
#include "export/clip/FormatWriters.h"
#include "export/picture/PngCodec.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <utility>

#include <zlib.h>

namespace starbloom {

namespace {

constexpr std::size_t signatureSize = 8;
constexpr std::size_t chunkOverhead = 12; ///< Length and name before the data, a checksum behind.

using ByteSpan = std::span<const std::byte>;

void appendNumber(std::vector<std::byte>& bytes, std::uint32_t number, int size = 4) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<std::byte>(number >> static_cast<unsigned>(shift)));
    }
}

void append(std::vector<std::byte>& bytes, ByteSpan more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

std::vector<std::byte> chunk(std::string_view name, ByteSpan head, ByteSpan data = {}) {
    std::vector<std::byte> bytes;
    bytes.reserve(chunkOverhead + head.size() + data.size());
    appendNumber(bytes, static_cast<std::uint32_t>(head.size() + data.size()));
    append(bytes, std::as_bytes(std::span(name)));
    append(bytes, head);
    append(bytes, data);
    const auto* checked = reinterpret_cast<const Bytef*>(bytes.data() + 4);
    appendNumber(bytes, static_cast<std::uint32_t>(crc32(0, checked, static_cast<uInt>(bytes.size() - 4))));
    return bytes;
}

/// Goes through the chunks of a PNG of our own.
class Chunks {
public:
    explicit Chunks(ByteSpan png)
        : m_rest(png.subspan(signatureSize)) {}

    bool next() {
        if (m_rest.size() < chunkOverhead) {
            return false;
        }
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            length = length << 8U | std::to_integer<std::size_t>(m_rest[i]);
        }
        m_whole = m_rest.first(length + chunkOverhead);
        m_rest = m_rest.subspan(m_whole.size());
        return true;
    }

    bool isNamed(std::string_view name) const { return std::memcmp(m_whole.data() + 4, name.data(), 4) == 0; }

    ByteSpan whole() const { return m_whole; }

    ByteSpan data() const { return m_whole.subspan(8, m_whole.size() - chunkOverhead); }

private:
    ByteSpan m_rest;
    ByteSpan m_whole;
};

/// An animation's frames are ordinary PNG data, in chunks that count, with a chunk about place and time before each.
class ApngClipWriter final : public BatchClipWriter {
public:
    ApngClipWriter(ClipOutput output, const ClipSettings& settings)
        : BatchClipWriter(1)
        , m_output(std::move(output))
        , m_rate(settings.rate)
        , m_alpha(settings.alpha) {}

private:
    Result<Bytes> encode(FramePiece& piece) const override;
    Result<void> write(const FramePiece& piece, const Bytes& encoded) override;
    Result<void> close() override;

    Bytes animationControl() const;
    Bytes frameControl(const FramePiece& piece);
    Bytes start(ByteSpan png);

    ClipOutput m_output;
    FrameRate m_rate;
    AlphaMode m_alpha;
    std::uint64_t m_controlOffset = 0;
    std::uint32_t m_frames = 0;
    std::uint32_t m_sequence = 0;
};

Result<ApngClipWriter::Bytes> ApngClipWriter::encode(FramePiece& piece) const {
    applyAlpha(piece.picture, m_alpha);
    auto png = encodePng(piece.picture, m_alpha != AlphaMode::Opaque);
    return png ? std::move(png) : Result<Bytes>(m_output.failure(png.error().message));
}

ApngClipWriter::Bytes ApngClipWriter::animationControl() const {
    Bytes data;
    appendNumber(data, m_frames);
    appendNumber(data, 0); // for ever
    return chunk("acTL", data);
}

ApngClipWriter::Bytes ApngClipWriter::frameControl(const FramePiece& piece) {
    Bytes data;
    appendNumber(data, m_sequence++);
    appendNumber(data, static_cast<std::uint32_t>(piece.picture.width()));
    appendNumber(data, static_cast<std::uint32_t>(piece.picture.height()));
    appendNumber(data, static_cast<std::uint32_t>(piece.x));
    appendNumber(data, static_cast<std::uint32_t>(piece.y));
    appendNumber(data, static_cast<std::uint32_t>(m_rate.seconds), 2);
    appendNumber(data, static_cast<std::uint32_t>(m_rate.frames), 2);
    appendNumber(data, 0, 2); // The piece replaces what it covers, and stays.
    return chunk("fcTL", data);
}

/// What comes before the first frame: all that a still picture has before its pixels.
ApngClipWriter::Bytes ApngClipWriter::start(ByteSpan png) {
    Bytes bytes;
    append(bytes, png.first(signatureSize));
    for (Chunks chunks(png); chunks.next() && !chunks.isNamed("IDAT");) {
        append(bytes, chunks.whole());
    }
    m_controlOffset = bytes.size();
    append(bytes, animationControl());
    return bytes;
}

Result<void> ApngClipWriter::write(const FramePiece& piece, const Bytes& encoded) {
    const bool isFirst = m_frames == 0;
    Bytes bytes = isFirst ? start(encoded) : Bytes();
    append(bytes, frameControl(piece));
    for (Chunks chunks(encoded); chunks.next();) {
        if (!chunks.isNamed("IDAT")) {
            continue;
        }
        if (isFirst) {
            append(bytes, chunks.whole());
        } else {
            Bytes number;
            appendNumber(number, m_sequence++);
            append(bytes, chunk("fdAT", number, chunks.data()));
        }
    }
    ++m_frames;
    return m_output.write(bytes);
}

Result<void> ApngClipWriter::close() {
    if (auto written = m_output.write(chunk("IEND", {})); !written) {
        return written;
    }
    if (auto counted = m_output.rewrite(m_controlOffset, animationControl()); !counted) {
        return counted;
    }
    return m_output.finish();
}

} // namespace

MadeClipWriter makeApngClipWriter(ClipOutput output, const ClipSettings& settings) {
    return std::unique_ptr<ClipWriter>(std::make_unique<ApngClipWriter>(std::move(output), settings));
}

} // namespace starbloom
