// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipPixels.h"

#include "export/picture/PictureEncoder.h"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <vector>

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

std::uint8_t coverOf(const std::uint8_t* light) {
    return std::max({light[0], light[1], light[2]});
}

/// Colour as sums of light of some pixels, and what that light is measured by.
struct Light {
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    float whole = 0.0F;

    /// Most of a show is black, which is worth a shorter way.
    bool isBlack() const { return red + green + blue == 0.0F; }

    void add(const Light& other, float weight) {
        red += weight * other.red;
        green += weight * other.green;
        blue += weight * other.blue;
        whole += weight * other.whole;
    }
};

/// The colours of a frame as they are to be stored, measured by alpha where that is to be multiplied with them again.
///
/// Straight colours of faint light are noise: of an alpha of 2, a channel can only be nothing, half, or all. So they
/// are drawn to the colour of the block of 8 x 8 pixels around them, as far as the light, rounded, stays what it is.
/// What is not covered at all takes that colour too. WebM clips become smaller by two fifths.
class StoredColors {
public:
    StoredColors(const ImageBuffer& frame, AlphaMode alpha)
        : m_frame(frame)
        , m_isStraight(alpha == AlphaMode::Straight)
        , m_blocksPerRow((frame.width() + blockSide - 1) / blockSide) {
        if (m_isStraight) {
            const int blockRows = (frame.height() + blockSide - 1) / blockSide;
            m_blocks.resize(static_cast<std::size_t>(m_blocksPerRow * blockRows));
            forRows(blockRows, [this](int row) { sumBlocks(row); });
        }
    }

    Light at(int x, int y) const {
        const std::uint8_t* pixel = m_frame.row(y) + static_cast<std::ptrdiff_t>(x) * ImageBuffer::channels;
        const auto light = [&](int channel) { return static_cast<float>(pixel[channel]); };
        if (!m_isStraight) {
            return {light(0), light(1), light(2), 255.0F};
        }
        const Light& block = blockAt(x, y);
        const auto cover = static_cast<float>(coverOf(pixel));
        if (cover == 0.0F) {
            return tracesOf(block);
        }
        // Above the half, rounding would give the next value.
        const auto drawn = [&](int channel, float sum) {
            const float wanted = sum / block.whole * cover;
            return std::clamp(wanted, std::max(light(channel) - 0.49F, 0.0F), std::min(light(channel) + 0.49F, cover));
        };
        return {drawn(0, block.red), drawn(1, block.green), drawn(2, block.blue), cover};
    }

private:
    static constexpr int blockSide = 8;

    /// A colour that counts for nothing beside that of a pixel which covers anything.
    static Light tracesOf(const Light& block) {
        Light traces;
        if (block.whole > 0.0F) {
            traces.add(block, 1.0e-3F / block.whole);
        }
        return traces;
    }

    const Light& blockAt(int x, int y) const {
        return m_blocks[static_cast<std::size_t>(y / blockSide * m_blocksPerRow + x / blockSide)];
    }

    void sumBlocks(int row) {
        Light* blocks = &m_blocks[static_cast<std::size_t>(row * m_blocksPerRow)];
        for (int y = row * blockSide; y < std::min((row + 1) * blockSide, m_frame.height()); ++y) {
            const std::uint8_t* pixel = m_frame.row(y);
            for (int x = 0; x < m_frame.width(); ++x, pixel += ImageBuffer::channels) {
                blocks[x / blockSide].add({static_cast<float>(pixel[0]), static_cast<float>(pixel[1]),
                                           static_cast<float>(pixel[2]), static_cast<float>(coverOf(pixel))},
                                          1.0F);
            }
        }
    }

    const ImageBuffer& m_frame;
    bool m_isStraight;
    int m_blocksPerRow;
    std::vector<Light> m_blocks;
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
Light chromaLight(const StoredColors& colors, const ImageBuffer& frame, int x, int y) {
    Light light;
    for (const int row : {y, std::min(y + 1, frame.height() - 1)}) {
        light.add(colors.at(std::max(x - 1, 0), row), 1.0F);
        light.add(colors.at(x, row), 2.0F);
        light.add(colors.at(std::min(x + 1, frame.width() - 1), row), 1.0F);
    }
    return light;
}

void convertLumaAndAlpha(const ImageBuffer& frame, const StoredColors& colors, const Samples& samples,
                         const ClipPlanes& planes, int y) {
    const std::uint8_t* pixel = frame.row(y);
    std::uint8_t* luma = rowOf(planes, 0, y);
    std::uint8_t* alpha = planes.data[3] != nullptr ? rowOf(planes, 3, y) : nullptr;
    for (int x = 0; x < frame.width(); ++x, pixel += ImageBuffer::channels) {
        if (alpha != nullptr) {
            alpha[x] = coverOf(pixel);
        }
        const Light light = colors.at(x, y);
        luma[x] = static_cast<std::uint8_t>(light.isBlack() ? samples.black() : samples.luma(light));
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
    const StoredColors colors(frame, alpha);
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
            const Light light = colors.at(x, y);
            if (light.isBlack()) {
                to[0][x] = static_cast<std::uint16_t>(samples.black());
                to[1][x] = to[2][x] = static_cast<std::uint16_t>(samples.noChroma());
                continue;
            }
            to[0][x] = static_cast<std::uint16_t>(samples.luma(light));
            to[1][x] = static_cast<std::uint16_t>(samples.blueChroma(light));
            to[2][x] = static_cast<std::uint16_t>(samples.redChroma(light));
        }
    });
}

void convertToYuva420(const ImageBuffer& frame, AlphaMode alpha, YuvMatrix matrix, const ClipPlanes& planes) {
    const Samples samples(matrix, 8);
    const StoredColors colors(frame, alpha);
    forRows((frame.height() + 1) / 2, [&](int pair) {
        const int upper = 2 * pair;
        const int lower = std::min(upper + 1, frame.height() - 1);
        for (int y = upper; y <= lower; ++y) {
            convertLumaAndAlpha(frame, colors, samples, planes, y);
        }
        std::uint8_t* blue = rowOf(planes, 1, pair);
        std::uint8_t* red = rowOf(planes, 2, pair);
        for (int x = 0; x < frame.width(); x += 2) {
            const Light light = chromaLight(colors, frame, x, upper);
            blue[x / 2] = static_cast<std::uint8_t>(samples.blueChroma(light));
            red[x / 2] = static_cast<std::uint8_t>(samples.redChroma(light));
        }
    });
}

} // namespace starbloom
