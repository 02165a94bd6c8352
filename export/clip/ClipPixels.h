// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "export/clip/ClipWriter.h"
#include "export/movie/YuvConverter.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace starbloom {

// What frames become before they are encoded.

/// Gives a frame the alpha that a clip of RGBA pixels has; see AlphaMode.
void applyAlpha(ImageBuffer& frame, AlphaMode alpha);

/// The matrix that players expect at a height.
inline YuvMatrix matrixFor(int height) {
    return height >= 720 ? YuvMatrix::Bt709 : YuvMatrix::Bt601;
}

/// Planes of Y', Cb, Cr and alpha, the last of which may be missing. Strides are bytes.
struct ClipPlanes {
    std::array<std::uint8_t*, 4> data{};
    std::array<std::ptrdiff_t, 4> strides{};
};

// The conversions share rows among the threads of the caller's oneTBB arena. The result does not depend on their
// number. Straight colours keep what their light, rounded, is, and are calm where that is faint.

/// To Y'CbCr of 10 bits in words of 16, limited range, with full colour; alpha is 0 to 1023.
void convertToYuva444(const ImageBuffer& frame, AlphaMode alpha, YuvMatrix matrix, const ClipPlanes& planes);

/// To Y'CbCr of 8 bits, limited range, with 4:2:0 chroma placed as in movies (see convertToYuv()); odd sides have half
/// a chroma sample more. In chroma of straight colours each pixel counts as much as it covers, so that no colour bleeds
/// from where nothing is.
void convertToYuva420(const ImageBuffer& frame, AlphaMode alpha, YuvMatrix matrix, const ClipPlanes& planes);

} // namespace starbloom
