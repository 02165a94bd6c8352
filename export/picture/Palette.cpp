// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/Palette.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace starbloom {

namespace {

liq_color colorAt(const std::uint8_t* pixel) {
    return {pixel[0], pixel[1], pixel[2], 255};
}

void opaqueRow(liq_color* to, int y, int width, void* image) {
    const std::uint8_t* from = static_cast<const ImageBuffer*>(image)->row(y);
    for (int x = 0; x < width; ++x, from += 4) {
        to[x] = colorAt(from);
    }
}

} // namespace

const char* wordsFor(liq_error error) {
    switch (error) {
    case LIQ_OUT_OF_MEMORY:
        return "out of memory";
    case LIQ_VALUE_OUT_OF_RANGE:
        return "the picture is too large";
    default:
        return "no palette could be found";
    }
}

PaletteImage opaqueImage(const liq_attr& attributes, const ImageBuffer& image) {
    return PaletteImage(liq_image_create_custom(&attributes, opaqueRow, const_cast<ImageBuffer*>(&image), image.width(),
                                                image.height(), 0.0));
}

liq_color mostFrequentColor(const ImageBuffer& image) {
    const std::size_t pixels = image.bytes().size() / 4;
    const std::size_t step = std::max<std::size_t>(pixels / 4096, 1);
    std::vector<std::uint32_t> found;
    for (std::size_t i = 0; i < pixels; i += step) {
        const std::uint8_t* pixel = image.bytes().data() + 4 * i;
        found.push_back(static_cast<std::uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]));
    }
    std::ranges::sort(found);
    std::uint32_t best = 0;
    std::ptrdiff_t most = 0;
    for (auto run = found.begin(); run != found.end();) {
        const auto end = std::upper_bound(run, found.end(), *run);
        if (end - run > most) {
            most = end - run;
            best = *run;
        }
        run = end;
    }
    return {static_cast<std::uint8_t>(best >> 16U), static_cast<std::uint8_t>(best >> 8U),
            static_cast<std::uint8_t>(best), 255};
}

} // namespace starbloom
