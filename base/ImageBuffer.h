// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace starbloom {

/// A picture in memory: 8 bits per channel, four channels per pixel in the order red, green, blue, alpha, rows from top
/// to bottom without padding. Colours are display RGB (sRGB) with straight alpha. Copying copies the pixels.
class ImageBuffer {
public:
    static constexpr int channels = 4;

    ImageBuffer() = default;

    /// A picture of transparent black. Width and height are pixels and must not be negative.
    ImageBuffer(int width, int height)
        : m_width(width)
        , m_height(height)
        , m_pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * channels) {}

    int width() const { return m_width; }

    int height() const { return m_height; }

    std::size_t bytesPerRow() const { return static_cast<std::size_t>(m_width) * channels; }

    std::uint8_t* row(int y) { return m_pixels.data() + static_cast<std::size_t>(y) * bytesPerRow(); }

    const std::uint8_t* row(int y) const { return m_pixels.data() + static_cast<std::size_t>(y) * bytesPerRow(); }

    std::span<std::uint8_t> bytes() { return m_pixels; }

    std::span<const std::uint8_t> bytes() const { return m_pixels; }

    friend bool operator==(const ImageBuffer&, const ImageBuffer&) = default;

private:
    int m_width = 0;
    int m_height = 0;
    std::vector<std::uint8_t> m_pixels;
};

} // namespace starbloom
