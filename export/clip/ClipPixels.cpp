// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipPixels.h"

#include "export/picture/PictureEncoder.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>

namespace starbloom {

namespace {

constexpr int rowsPerTask = 32;

/// Calls `convert` for every row, each thread some rows at a time.
template <typename Convert>
void forRows(int rows, const Convert& convert) {
    namespace tbb = oneapi::tbb;
    // Without the isolation a thread that waits here could begin with another task of its caller.
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_for(tbb::blocked_range<int>(0, rows, rowsPerTask), [&](const tbb::blocked_range<int>& range) {
            for (int row = range.begin(); row < range.end(); ++row) {
                convert(row);
            }
        });
    });
}

/// Most of a show is black, which is worth a shorter way.
bool isBlack(const std::uint8_t* light) {
    return (light[0] | light[1] | light[2]) == 0;
}

std::uint8_t coverOf(const std::uint8_t* light) {
    return std::max({light[0], light[1], light[2]});
}

/// Colour as sums of light of some pixels, and what that light is measured by: the sum of their alpha, or of 255.
struct Light {
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    float whole = 0.0F;

    void add(const std::uint8_t* pixel, bool straight, float weight) {
        red += weight * pixel[0];
        green += weight * pixel[1];
        blue += weight * pixel[2];
        whole += weight * static_cast<float>(straight ? coverOf(pixel) : 255);
    }
};

/// The arithmetic of one matrix for one depth of samples.
class Samples {
public:
    Samples(YuvMatrix matrix, int bits)
        : m_red(matrix == YuvMatrix::Bt709 ? 0.2126F : 0.299F)
        , m_blue(matrix == YuvMatrix::Bt709 ? 0.0722F : 0.114F)
        , m_unit(static_cast<float>(1 << (bits - 8))) {}

    int black() const { return rounded(16.0F); }

    int noChroma() const { return rounded(128.0F); }

    int luma(const Light& light) const { return rounded(16.0F + 219.0F * brightness(light) * inverse(light)); }

    int blueChroma(const Light& light) const {
        return rounded(128.0F + 112.0F / (1.0F - m_blue) * (light.blue - brightness(light)) * inverse(light));
    }

    int redChroma(const Light& light) const {
        return rounded(128.0F + 112.0F / (1.0F - m_red) * (light.red - brightness(light)) * inverse(light));
    }

private:
    float brightness(const Light& light) const {
        return m_red * light.red + (1.0F - m_red - m_blue) * light.green + m_blue * light.blue;
    }

    static float inverse(const Light& light) { return light.whole > 0.0F ? 1.0F / light.whole : 0.0F; }

    int rounded(float value) const { return static_cast<int>(value * m_unit + 0.5F); }

    float m_red;
    float m_blue;
    float m_unit;
};

std::uint8_t* rowOf(const ClipPlanes& planes, std::size_t plane, int row) {
    return planes.data[plane] + row * planes.strides[plane];
}

/// The sum of the pixels around an even column, in two rows, weighted 1, 2, 1; at an edge the last pixel stands in.
Light chromaLight(const std::uint8_t* upper, const std::uint8_t* lower, int column, int width, bool straight) {
    const int left = std::max(column - 1, 0) * ImageBuffer::channels;
    const int middle = column * ImageBuffer::channels;
    const int right = std::min(column + 1, width - 1) * ImageBuffer::channels;
    Light light;
    for (const std::uint8_t* row : {upper, lower}) {
        light.add(row + left, straight, 1.0F);
        light.add(row + middle, straight, 2.0F);
        light.add(row + right, straight, 1.0F);
    }
    return light;
}

void convertLumaAndAlpha(const ImageBuffer& frame, bool straight, const Samples& samples, const ClipPlanes& planes,
                         int y) {
    const std::uint8_t* pixel = frame.row(y);
    std::uint8_t* luma = rowOf(planes, 0, y);
    std::uint8_t* alpha = planes.data[3] != nullptr ? rowOf(planes, 3, y) : nullptr;
    for (int x = 0; x < frame.width(); ++x, pixel += ImageBuffer::channels) {
        if (alpha != nullptr) {
            alpha[x] = coverOf(pixel);
        }
        if (isBlack(pixel)) {
            luma[x] = static_cast<std::uint8_t>(samples.black());
            continue;
        }
        Light light;
        light.add(pixel, straight, 1.0F);
        luma[x] = static_cast<std::uint8_t>(samples.luma(light));
    }
}

} // namespace

void applyAlpha(ImageBuffer& frame, AlphaMode alpha) {
    if (alpha == AlphaMode::Straight) {
        lightToAlpha(frame);
        return;
    }
    const auto bytes = frame.bytes();
    for (std::size_t i = 0; i < bytes.size(); i += ImageBuffer::channels) {
        bytes[i + 3] = alpha == AlphaMode::Opaque ? 255 : coverOf(&bytes[i]);
    }
}

void convertToYuva444(const ImageBuffer& frame, AlphaMode alpha, YuvMatrix matrix, const ClipPlanes& planes) {
    const Samples samples(matrix, 10);
    const bool straight = alpha == AlphaMode::Straight;
    forRows(frame.height(), [&](int y) {
        const std::uint8_t* pixel = frame.row(y);
        std::array<std::uint16_t*, 4> to{};
        for (std::size_t plane = 0; plane < to.size() && planes.data[plane] != nullptr; ++plane) {
            to[plane] = reinterpret_cast<std::uint16_t*>(rowOf(planes, plane, y));
        }
        for (int x = 0; x < frame.width(); ++x, pixel += ImageBuffer::channels) {
            if (to[3] != nullptr) {
                to[3][x] = static_cast<std::uint16_t>((coverOf(pixel) * 1023 + 127) / 255);
            }
            if (isBlack(pixel)) {
                to[0][x] = static_cast<std::uint16_t>(samples.black());
                to[1][x] = to[2][x] = static_cast<std::uint16_t>(samples.noChroma());
                continue;
            }
            Light light;
            light.add(pixel, straight, 1.0F);
            to[0][x] = static_cast<std::uint16_t>(samples.luma(light));
            to[1][x] = static_cast<std::uint16_t>(samples.blueChroma(light));
            to[2][x] = static_cast<std::uint16_t>(samples.redChroma(light));
        }
    });
}

void convertToYuva420(const ImageBuffer& frame, AlphaMode alpha, YuvMatrix matrix, const ClipPlanes& planes) {
    const Samples samples(matrix, 8);
    const bool straight = alpha == AlphaMode::Straight;
    forRows((frame.height() + 1) / 2, [&](int pair) {
        const int upper = 2 * pair;
        const int lower = std::min(upper + 1, frame.height() - 1);
        for (int y = upper; y <= lower; ++y) {
            convertLumaAndAlpha(frame, straight, samples, planes, y);
        }
        std::uint8_t* blue = rowOf(planes, 1, pair);
        std::uint8_t* red = rowOf(planes, 2, pair);
        for (int x = 0; x < frame.width(); x += 2) {
            const Light light = chromaLight(frame.row(upper), frame.row(lower), x, frame.width(), straight);
            blue[x / 2] = static_cast<std::uint8_t>(samples.blueChroma(light));
            red[x / 2] = static_cast<std::uint8_t>(samples.redChroma(light));
        }
    });
}

} // namespace starbloom
