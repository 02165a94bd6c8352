// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"

#include <cstddef>
#include <string>
#include <vector>

namespace starbloom {

// One function per kind of picture, each in a file of its own; PngCodec.h has PNG. All encode into memory, keep no
// state, so that any number of threads may call them at once, and give the same bytes for the same input. A comment is
// ASCII; an empty one is left out. An Error ends with the library's own words. Alpha is dropped unless it is asked for:
// each pixel keeps its colour as if it covered everything. Pictures without pixels are refused.

/// 24 bits per pixel, not compressed.
Result<std::vector<std::byte>> encodeBmp(const ImageBuffer& image);

/// A palette of at most 256 colours chosen for the picture, dithered; the most frequent colour, which is the sky, stays
/// exactly what it is. At most 65535 pixels in a direction.
Result<std::vector<std::byte>> encodeGif(const ImageBuffer& image, const std::string& comment);

/// Baseline JPEG with an sRGB profile. Quality is 0.05 to 1; from 0.9 on colour keeps its full resolution, so that thin
/// coloured sparks stay coloured, below it has half of it in both directions.
Result<std::vector<std::byte>> encodeJpeg(const ImageBuffer& image, double quality, const std::string& comment);

/// JP2 with irreversible wavelets, tagged as sRGB. Quality is 0.05 to 1; each step of 0.05 less is visibly smaller.
Result<std::vector<std::byte>> encodeJpeg2000(const ImageBuffer& image, double quality, bool alpha,
                                              const std::string& comment);

/// Losslessly compressed, with an sRGB profile; alpha is straight.
Result<std::vector<std::byte>> encodeTiff(const ImageBuffer& image, bool alpha, const std::string& comment);

} // namespace starbloom
