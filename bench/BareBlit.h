// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/Workers.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace starbloom {

/// The machine's own limit for drawing sparks: as little work as a frame of so many of them can be.
///
/// Each spark's state is worked out (position and alpha in closed form), the picture is cleared, a ready tinted sprite
/// of 12 x 12 pixels is added at a whole-pixel position with saturating 8-bit arithmetic, and the picture is copied out
/// once. No sizes, no sub-pixel positions, no tinting, no room above full brightness.
///
/// With several workers each clears, draws and copies its own rows of the picture and reads all sparks.
class BareBlit {
public:
    static constexpr int side = 12;

    /// What the inner loop reads and writes.
    struct Scene {
        int width = 0;
        int height = 0;
        std::vector<float> x, y, velocityX, velocityY, birth;
        std::vector<std::uint8_t> sprites; ///< Ready tinted, one for each of 16 colours.
        std::vector<std::uint8_t> picture;
    };

    BareBlit(int width, int height, std::size_t sparks);

    /// Draws the moment `time`.
    void drawFrame(float time, Workers& workers);

    const std::vector<std::uint8_t>& output() const { return m_output; }

private:
    Scene m_scene;
    std::vector<std::uint8_t> m_output;
};

} // namespace starbloom
