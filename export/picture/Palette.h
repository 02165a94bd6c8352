// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"

#include <memory>

#include <libimagequant.h>

namespace starbloom {

// What all users of libimagequant in this folder and beside it share. Not for headers that others include.

struct DestroyPalette {
    void operator()(liq_attr* attributes) const { liq_attr_destroy(attributes); }

    void operator()(liq_image* image) const { liq_image_destroy(image); }

    void operator()(liq_result* result) const { liq_result_destroy(result); }
};

using PaletteAttributes = std::unique_ptr<liq_attr, DestroyPalette>;
using PaletteImage = std::unique_ptr<liq_image, DestroyPalette>;
using PaletteResult = std::unique_ptr<liq_result, DestroyPalette>;

/// Words for the library's errors.
const char* wordsFor(liq_error error);

/// A picture as the library reads it, its alpha ignored; it must outlive the result, which is null without memory.
PaletteImage opaqueImage(const liq_attr& attributes, const ImageBuffer& image);

/// The colour of the sky, found in a few thousand pixels spread over the picture.
liq_color mostFrequentColor(const ImageBuffer& image);

} // namespace starbloom
