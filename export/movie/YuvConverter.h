// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"

#include <cstddef>
#include <cstdint>

namespace starbloom {

/// Which luminance weights a movie's colours are stored with: Rec. 601 for standard, Rec. 709 for high definition.
enum class YuvMatrix { Bt601, Bt709 };

/// Where a converted picture goes. The luma plane has an even number of columns and rows, at least as many as the
/// picture; the chroma planes have half as many of both. Strides are bytes from one row to the next.
struct YuvPlanes {
    std::uint8_t* luma = nullptr;
    std::ptrdiff_t lumaStride = 0;
    std::uint8_t* blue = nullptr; ///< Cb
    std::uint8_t* red = nullptr;  ///< Cr
    std::ptrdiff_t chromaStride = 0;
};

/// Converts a picture to limited-range Y'CbCr with 4:2:0 chroma, as movies are stored. Alpha is ignored. A last column
/// or row without a partner gets a black one.
///
/// With the weights kr and kb of the matrix, kg = 1 - kr - kb, and R, G, B from 0 to 255:
///
///     Y  =  16 + (kr R + kg G + kb B) 219 / 255
///     Cb = 128 + (B - kr R - kg G - kb B) / (2 (1 - kb)) 224 / 255
///     Cr = 128 + (R - kr R - kg G - kb B) / (2 (1 - kr)) 224 / 255
///
/// A chroma sample lies on the even column, between the two rows, where players expect it: its R, G, B are the mean
/// over both rows of the columns left of it, on it and right of it, weighted 1, 2, 1 (at the left edge the column
/// itself stands in for the missing one). All in integers, the weights having 15 bits after the point, rounded to
/// nearest once at the end: within 0.52 of the exact value, and the same on every processor.
///
/// Any number of threads may convert at once, each to planes of its own.
void convertToYuv(const ImageBuffer& image, YuvMatrix matrix, const YuvPlanes& planes);

} // namespace starbloom
