// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/FormatEncoders.h"

#include <cstdint>
#include <limits>

namespace starbloom {

namespace {

constexpr std::size_t headerSize = 14 + 40;

/// Writes numbers with their lowest byte first.
class HeaderWriter {
public:
    explicit HeaderWriter(std::byte* at)
        : m_at(at) {}

    void put(std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            *m_at++ = static_cast<std::byte>(value >> (8 * i));
        }
    }

private:
    std::byte* m_at;
};

void putHeader(std::byte* at, const ImageBuffer& image, std::uint32_t pixelBytes) {
    constexpr std::uint32_t pixelsPerMetre = 2835; // 72 dots per inch: a pixel is a point.
    HeaderWriter header(at);
    header.put(0x4D42, 2); // "BM"
    header.put(static_cast<std::uint32_t>(headerSize) + pixelBytes, 4);
    header.put(0, 4);
    header.put(headerSize, 4);
    header.put(40, 4);
    header.put(static_cast<std::uint32_t>(image.width()), 4);
    header.put(static_cast<std::uint32_t>(image.height()), 4);
    header.put(1, 2);
    header.put(24, 2);
    header.put(0, 4); // not compressed
    header.put(pixelBytes, 4);
    header.put(pixelsPerMetre, 4);
    header.put(pixelsPerMetre, 4);
    header.put(0, 4);
    header.put(0, 4);
}

} // namespace

Result<std::vector<std::byte>> encodeBmp(const ImageBuffer& image) {
    if (image.width() < 1 || image.height() < 1) {
        return Error{"cannot make a BMP of a picture without pixels"};
    }
    const std::size_t rowSize = (static_cast<std::size_t>(image.width()) * 3 + 3) / 4 * 4;
    const std::size_t pixelBytes = rowSize * static_cast<std::size_t>(image.height());
    if (pixelBytes > std::numeric_limits<std::uint32_t>::max() - headerSize) {
        return Error{"cannot make a BMP: the picture has more than 4 GiB"};
    }
    std::vector<std::byte> output(headerSize + pixelBytes);
    putHeader(output.data(), image, static_cast<std::uint32_t>(pixelBytes));
    for (int y = 0; y < image.height(); ++y) {
        // The lowest row comes first.
        std::byte* to = output.data() + headerSize + rowSize * static_cast<std::size_t>(image.height() - 1 - y);
        const std::uint8_t* from = image.row(y);
        for (int x = 0; x < image.width(); ++x, from += 4, to += 3) {
            to[0] = std::byte{from[2]};
            to[1] = std::byte{from[1]};
            to[2] = std::byte{from[0]};
        }
    }
    return output;
}

} // namespace starbloom
