// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/LitArea.h"
#include "engine/raster/RasterKernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <vector>

namespace starbloom {

/// The accumulated light of some rows of the picture, used for one band after the other. Between bands all light is
/// zero, which resolve() restores, so only what was touched is ever cleared.
class LightBand {
public:
    /// How far from one channel's plane to the next, in a picture of that width; three of them to the next row.
    static std::ptrdiff_t planeStrideFor(int pictureWidth);

    /// Pixels beyond the right edge that a sprite's last vector, or the last line of a row to be resolved, may reach.
    static constexpr int margin = std::max(spriteLanes, linePixels);

    /// Prepares for a band of so many rows of a picture of that width.
    void begin(int pictureWidth, int rows);

    /// The first pixel of the band, where a cache line begins, as it does in every row of every plane.
    std::uint16_t* light() { return m_light.data(); }

    std::ptrdiff_t planeStride() const { return m_planeStride; }

    /// A row of cells of the picture that lies in the band.
    struct CellRow {
        int top = 0;                       ///< Its first row of pixels, counted from the band's.
        int rows = 0;                      ///< Of pixels.
        std::span<const std::uint8_t> lit; ///< For each cell, whether sprites have been drawn there.
        std::span<std::uint8_t> cells;     ///< What LitArea knows of them; brought up to date.
        std::uint8_t* pixels = nullptr;    ///< Of its first row.
        std::size_t bytesPerRow = 0;
    };

    /// Writes a row's pixels and takes its light back to zero. Cells that are dark now and before are not written.
    void resolve(const RasterKernels& kernels, const ResolveSettings& settings, const CellRow& row);

private:
    static constexpr std::size_t cacheLine = 64; ///< Bytes.

    /// Memory that begins where a cache line does.
    template <typename T>
    struct CacheAligned {
        using value_type = T;

        T* allocate(std::size_t count) {
            return static_cast<T*>(::operator new(count * sizeof(T), static_cast<std::align_val_t>(cacheLine)));
        }

        void deallocate(T* memory, std::size_t /*count*/) {
            ::operator delete(memory, static_cast<std::align_val_t>(cacheLine));
        }

        friend bool operator==(CacheAligned, CacheAligned) { return true; }
    };

    int m_width = 0;
    std::ptrdiff_t m_planeStride = 0;
    std::vector<std::uint16_t, CacheAligned<std::uint16_t>> m_light;
};

} // namespace starbloom
