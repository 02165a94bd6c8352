// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "engine/model/SparkImage.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace starbloom {

// Both functions keep no state, so any number of threads may call them at once.

/// Encodes a picture as an opaque PNG with 8 bits for each of red, green and blue, tagged as sRGB. Alpha is dropped:
/// each pixel keeps its colour as if it covered everything. The same pixels always give the same bytes.
/// Fails only for a picture without pixels or when memory runs out.
Result<std::vector<std::byte>> encodePng(const ImageBuffer& image);

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
