// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace starbloom {

/// Some pixels of a picture, from its top left corner.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// Which cells of a picture have light in them. The rest is plain background, so a renderer that draws the next frame
/// into the same memory can leave alone what is dark before and after.
///
/// Belongs to the picture's memory: whoever writes to that memory in any other way calls forget().
class LitArea {
public:
    static constexpr int cellWidth = 64; ///< Pixels. A cell is as high as a band of the renderer.

    /// Whatever the memory holds, the next frame is written as a whole.
    void forget() { m_width = 0; }

    /// What the last frame has changed, one rectangle for each run of cells beside one another.
    const std::vector<PixelRect>& changed() const { return m_changed; }

private:
    friend class RasterRenderer;

    /// The cells of a band: bit 0 tells whether there was light, bit 1 whether the last frame has written them.
    std::span<std::uint8_t> band(int index);
    void begin(int width, int height, int bandHeight, const Color& background);
    void end();

    int m_width = 0;
    int m_height = 0;
    int m_bandHeight = 1;
    Color m_background;
    std::vector<std::uint8_t> m_cells;
    std::vector<PixelRect> m_changed;
};

} // namespace starbloom
