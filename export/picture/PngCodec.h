// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "engine/model/SparkImage.h"

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace starbloom {

// Both functions keep no state, so any number of threads may call them at once.

/// Encodes a picture as a PNG with 8 bits for each channel, tagged as sRGB. Alpha is dropped unless it is asked for:
/// each pixel then keeps its colour as if it covered everything. A comment is ASCII and becomes a text of that keyword;
/// an empty one is left out. The same input always gives the same bytes.
/// Fails only for a picture without pixels or when memory runs out.
Result<std::vector<std::byte>> encodePng(const ImageBuffer& image, bool alpha = false, const std::string& comment = {});

/// Decodes a PNG of any kind (palette, grey or colour, with or without transparency, 1 to 16 bits, interlaced or not)
/// into a spark. A pixel's light is its luminance (Rec. 709 weights on the values as stored) times its alpha; 16-bit
/// files keep their precision. The pHYs chunk gives the pixels per point, a point being 1/72 inch; a file without it
/// has one pixel per point.
///
/// The bytes are not trusted: what is no PNG, is cut short, or is larger than 4096 pixels in a direction gives an Error
/// that says so. Bytes after the end of the picture are ignored.
Result<SparkImage> decodeSparkImage(std::span<const std::byte> png);

/// The same for a show to share; null when it cannot be decoded. A show without its image is no failure that anybody is
/// told of: nothing but the background shows.
std::shared_ptr<const SparkImage> sharedSparkImage(std::span<const std::byte> png);

} // namespace starbloom
