// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "export/picture/PictureFormat.h"
#include "export/picture/ShowNote.h"

#include <cstddef>
#include <vector>

namespace starbloom {

struct PictureOptions {
    PictureFormat format = PictureFormat::Png;
    double quality = 1.0;     ///< 0.05 to 1; for JPEG and JPEG 2000, the others ignore it.
    bool transparent = false; ///< Keeps the alpha of the picture, in formats that have one.
};

// Pure functions, for any thread.

/// Encodes a picture into memory, with the note in it where the format has a place; null: without. Every pixel of a
/// lossless format comes back as it was; colours are tagged as sRGB. The message of an Error ends with the library's
/// own words.
Result<std::vector<std::byte>> encodePicture(const ImageBuffer& image, const PictureOptions& options,
                                             const ShowNote* note);

/// Makes the light of a show on black into straight alpha: each pixel covers as much as its brightest channel has
/// light. Laid over black this is exactly the picture that it was; over anything else it glows.
void lightToAlpha(ImageBuffer& image);

} // namespace starbloom
