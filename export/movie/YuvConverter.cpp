// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/YuvConverter.h"

#include "export/movie/YuvFormula.h"

#include <algorithm>
#include <vector>

// This file compiles itself once for each instruction set that is worth it.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "export/movie/YuvConverter.cpp"
#include <hwy/foreach_target.h>

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace starbloom {

namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_SCALAR

// Without lanes, everything is left to the functions for one sample.

std::size_t convertLumaLanes(const std::uint8_t*, std::size_t, const YuvWeights&, std::uint8_t*) {
    return 0;
}

std::size_t convertChromaLanes(const YuvRowPair&, const YuvCoefficients&, std::size_t first) {
    return first;
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<std::int16_t>;
using Sums = hn::Repartition<std::int32_t, Words>;
using Pixels = hn::Repartition<std::uint32_t, Words>;
using WordVector = hn::Vec<Words>;
using SumVector = hn::Vec<Sums>;
using PixelVector = hn::Vec<Pixels>;

// A pixel's channels become two pairs of words, so that one instruction multiplies and adds a pair. (The pairs are not
// kept in a structure: some processors have vectors of a length that the compiler does not know.)

HWY_ATTR WordVector redAndBlue(PixelVector pixels) {
    return hn::BitCast(Words(), hn::And(pixels, hn::Set(Pixels(), 0x00FF00FF)));
}

HWY_ATTR WordVector greenAndAlpha(PixelVector pixels) {
    const hn::RebindToUnsigned<Words> unsignedWords;
    return hn::BitCast(Words(), hn::ShiftRight<8>(hn::BitCast(unsignedWords, pixels)));
}

HWY_ATTR WordVector pairOf(std::int16_t even, std::int16_t odd) {
    return hn::OddEven(hn::Set(Words(), odd), hn::Set(Words(), even));
}

/// Weighs, rounds, and keeps the low bytes.
template <int bits>
HWY_ATTR void weighAndStore(WordVector redBlue, WordVector greenAlpha, const YuvWeights& weights, int bias,
                            std::uint8_t* target) {
    const Sums sums;
    SumVector rest = hn::Zero(sums);
    SumVector sum =
        hn::ReorderWidenMulAccumulate(sums, redBlue, pairOf(weights.red, weights.blue), hn::Zero(sums), rest);
    sum = hn::ReorderWidenMulAccumulate(sums, greenAlpha, pairOf(weights.green, 0), sum, rest);
    sum = hn::Add(hn::RearrangeToOddPlusEven(sum, rest), hn::Set(sums, bias));
    const hn::Rebind<std::uint8_t, Sums> bytes;
    hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<bits>(sum)), bytes, target);
}

HWY_ATTR PixelVector loadPixels(const std::uint8_t* row, std::size_t pixel) {
    const hn::Repartition<std::uint8_t, Words> bytes;
    return hn::BitCast(Pixels(), hn::LoadU(bytes, row + pixel * ImageBuffer::channels));
}

/// Converts as many pixels of a row as fill whole vectors, and says how many.
HWY_ATTR std::size_t convertLumaLanes(const std::uint8_t* row, std::size_t width, const YuvWeights& weights,
                                      std::uint8_t* luma) {
    const std::size_t lanes = hn::Lanes(Sums());
    std::size_t pixel = 0;
    for (; pixel + lanes <= width; pixel += lanes) {
        const PixelVector pixels = loadPixels(row, pixel);
        weighAndStore<weightBits>(redAndBlue(pixels), greenAndAlpha(pixels), weights, lumaBias, luma + pixel);
    }
    return pixel;
}

/// The 1, 2, 1 sums of one pair of channels around every other pixel of a row, from the pixel `middle` on.
template <WordVector (*channelPair)(PixelVector)>
HWY_ATTR WordVector sumColumns(const std::uint8_t* row, std::size_t middle) {
    const Pixels tag;
    const std::size_t lanes = hn::Lanes(tag);
    const PixelVector first = loadPixels(row, middle);
    const PixelVector second = loadPixels(row, middle + lanes);
    const PixelVector left = hn::ConcatEven(tag, loadPixels(row, middle + lanes - 1), loadPixels(row, middle - 1));
    const WordVector centre = channelPair(hn::ConcatEven(tag, second, first));
    const WordVector sides = hn::Add(channelPair(left), channelPair(hn::ConcatOdd(tag, second, first)));
    return hn::Add(sides, hn::Add(centre, centre));
}

/// Converts as many chroma samples as fill whole vectors, beginning with `first`, which must not be the one at the left
/// edge. Gives the first one that is left over.
HWY_ATTR std::size_t convertChromaLanes(const YuvRowPair& rows, const YuvCoefficients& coefficients,
                                        std::size_t first) {
    const std::size_t lanes = hn::Lanes(Sums());
    std::size_t sample = first;
    for (; sample + lanes <= rows.width / 2; sample += lanes) {
        const WordVector redBlue =
            hn::Add(sumColumns<redAndBlue>(rows.upper, 2 * sample), sumColumns<redAndBlue>(rows.lower, 2 * sample));
        const WordVector greenAlpha = hn::Add(sumColumns<greenAndAlpha>(rows.upper, 2 * sample),
                                              sumColumns<greenAndAlpha>(rows.lower, 2 * sample));
        weighAndStore<chromaBits>(redBlue, greenAlpha, coefficients.blueChroma, chromaBias, rows.blue + sample);
        weighAndStore<chromaBits>(redBlue, greenAlpha, coefficients.redChroma, chromaBias, rows.red + sample);
    }
    return sample;
}

#endif // HWY_SCALAR

void convertLumaRow(const std::uint8_t* row, std::size_t width, const YuvWeights& weights, std::uint8_t* luma) {
    for (std::size_t pixel = convertLumaLanes(row, width, weights, luma); pixel < width; ++pixel) {
        luma[pixel] = lumaOf(row + pixel * ImageBuffer::channels, weights);
    }
}

void convertRowPair(const YuvRowPair& rows, const YuvCoefficients& coefficients) {
    convertLumaRow(rows.upper, rows.width, coefficients.luma, rows.upperLuma);
    convertLumaRow(rows.lower, rows.width, coefficients.luma, rows.lowerLuma);
    convertChroma(rows, coefficients, 0);
    for (std::size_t sample = convertChromaLanes(rows, coefficients, 1); sample < rows.width / 2; ++sample) {
        convertChroma(rows, coefficients, sample);
    }
}

} // namespace HWY_NAMESPACE

} // namespace starbloom

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace starbloom {

HWY_EXPORT(convertRowPair);

namespace {

/// Gives the rows of a picture, or black-padded copies of those that lack a partner on the right or below.
class EvenRows {
public:
    explicit EvenRows(const ImageBuffer& image)
        : m_image(image)
        , m_width((static_cast<std::size_t>(image.width()) + 1) / 2 * 2) {}

    std::size_t width() const { return m_width; }

    /// `copy` is the space for a padded row, and has to be another one for each row in use.
    const std::uint8_t* row(int y, std::vector<std::uint8_t>& copy) const {
        if (y < m_image.height() && m_image.bytesPerRow() == m_width * ImageBuffer::channels) {
            return m_image.row(y);
        }
        copy.assign(m_width * ImageBuffer::channels, 0);
        if (y < m_image.height()) {
            std::copy_n(m_image.row(y), m_image.bytesPerRow(), copy.data());
        }
        return copy.data();
    }

private:
    const ImageBuffer& m_image;
    std::size_t m_width;
};

} // namespace

void convertToYuv(const ImageBuffer& image, YuvMatrix matrix, const YuvPlanes& planes) {
    const YuvCoefficients coefficients = coefficientsOf(matrix);
    const EvenRows source(image);
    std::vector<std::uint8_t> upperCopy;
    std::vector<std::uint8_t> lowerCopy;
    for (int y = 0; y < image.height(); y += 2) {
        YuvRowPair rows{};
        rows.upper = source.row(y, upperCopy);
        rows.lower = source.row(y + 1, lowerCopy);
        rows.width = source.width();
        rows.upperLuma = planes.luma + y * planes.lumaStride;
        rows.lowerLuma = rows.upperLuma + planes.lumaStride;
        rows.blue = planes.blue + y / 2 * planes.chromaStride;
        rows.red = planes.red + y / 2 * planes.chromaStride;
        HWY_DYNAMIC_DISPATCH(convertRowPair)(rows, coefficients);
    }
}

} // namespace starbloom

#endif // HWY_ONCE
