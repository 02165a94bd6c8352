// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/RasterKernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

TEST(RasterKernels, resolveWritesTheSameWhereverCacheLinesBegin) {
    constexpr int rows = 2;
    constexpr std::ptrdiff_t planeStride = 160;
    constexpr int left = 2 * linePixels; // Of the block, among the light of others.
    constexpr std::size_t bytesPerRow = 4 * planeStride;
    std::mt19937 random(1);
    std::vector<std::uint16_t> light(3 * planeStride * rows);
    std::ranges::generate(light, random);
    const auto resolved = [&](const RasterKernels& kernels, int width, std::size_t shift, PixelOrder order) {
        std::pair<std::vector<std::uint8_t>, std::vector<std::uint16_t>> result(rows * bytesPerRow, light);
        kernels.resolve({result.second.data() + left, planeStride, width, rows}, {{100, 4000, 30000}, order},
                        result.first.data() + 4 * shift, bytesPerRow);
        return result;
    };
    for (int width = 1; width < 5 * linePixels; ++width) {
        for (std::size_t shift = 0; shift < linePixels; ++shift) {
            const PixelOrder order = width % 2 == 0 ? PixelOrder::Rgba : PixelOrder::Bgra;
            auto [expectedPixels, expectedLight] = resolved(scalarKernels(), width, shift, order);
            const auto [pixels, rest] = resolved(vectorKernels(), width, shift, order);
            ASSERT_EQ(pixels, expectedPixels) << width << " from " << shift;
            for (auto row = expectedLight.begin() + left; width < linePixels && row < expectedLight.end();
                 row += planeStride) {
                std::fill_n(row, linePixels, std::uint16_t{0}); // May be cleared beyond a block so narrow.
            }
            ASSERT_EQ(rest, expectedLight) << width << " from " << shift;
        }
    }
}

} // namespace

} // namespace starbloom
