// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/SpriteAtlas.h"

#include "engine/raster/Resampling.h"
#include "engine/time/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>
#include <utility>

namespace starbloom {

namespace {

constexpr double sizeOfStep(int step) {
    if (step < SpriteSizes::fineSteps) {
        return step / 8.0;
    }
    const int above = step - SpriteSizes::fineSteps;
    return static_cast<double>(1 << (4 + above / 64)) * (1.0 + (above % 64) / 64.0);
}

float lightAt(const SparkImage& image, int x, int y) {
    const bool inside = x >= 0 && y >= 0 && x < image.width && y < image.height;
    return inside ? image.light[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                                static_cast<std::size_t>(x)]
                  : 0.0F;
}

double interpolate(const SparkImage& image, double x, double y) {
    const double left = std::floor(x - 0.5);
    const double top = std::floor(y - 0.5);
    const double u = x - 0.5 - left;
    const double v = y - 0.5 - top;
    const int ix = static_cast<int>(left);
    const int iy = static_cast<int>(top);
    const double upper = lightAt(image, ix, iy) * (1.0 - u) + lightAt(image, ix + 1, iy) * u;
    const double lower = lightAt(image, ix, iy + 1) * (1.0 - u) + lightAt(image, ix + 1, iy + 1) * u;
    return upper * (1.0 - v) + lower * v;
}

/// The image turned counter-clockwise about its centre, in a square that holds it at any angle.
SparkImage rotated(const SparkImage& image, double angle) {
    const auto turn = sineCosine(angle);
    const double diagonal =
        std::sqrt(static_cast<double>(image.width) * image.width + static_cast<double>(image.height) * image.height);
    const int side = static_cast<int>(std::ceil(diagonal));
    SparkImage result{side, side, image.pixelsPerPoint, {}};
    result.light.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double dx = x + 0.5 - side / 2.0;
            const double dy = y + 0.5 - side / 2.0;
            // Rows run downward, so a turn that is counter-clockwise to the eye is clockwise in these coordinates.
            const double sourceX = turn.cosine * dx - turn.sine * dy + image.width / 2.0;
            const double sourceY = turn.sine * dx + turn.cosine * dy + image.height / 2.0;
            result.light.push_back(static_cast<float>(interpolate(image, sourceX, sourceY)));
        }
    }
    return result;
}

bool looksTheSameFromAllSides(const SparkImage& image) {
    if (image.width != image.height) {
        return false;
    }
    // Well above what interpolation costs a smooth image, well below anything that could be seen to turn.
    constexpr float tolerance = 0.02F;
    for (const double angle : {std::numbers::pi / 2.0, std::numbers::pi / 4.0, 0.4}) {
        const SparkImage turned = rotated(image, angle);
        const double offset = (turned.width - image.width) / 2.0;
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                const auto light = static_cast<float>(interpolate(turned, x + 0.5 + offset, y + 0.5 + offset));
                if (std::abs(light - lightAt(image, x, y)) > tolerance) {
                    return false;
                }
            }
        }
    }
    return true;
}

/// A sprite before its margins are cut off.
struct Canvas {
    int reach;
    int side;
    int phases; ///< Per axis.
    std::vector<std::int16_t> masks;

    Canvas(int reachPixels, int phasesPerAxis)
        : reach(reachPixels)
        , side(2 * reachPixels + 1)
        , phases(phasesPerAxis)
        , masks(static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * static_cast<std::size_t>(phases) *
                static_cast<std::size_t>(phases)) {}

    std::int16_t* row(int phase, int y) {
        return masks.data() +
               (static_cast<std::size_t>(phase) * static_cast<std::size_t>(side) + static_cast<std::size_t>(y)) *
                   static_cast<std::size_t>(side);
    }
};

Canvas drawAllPhases(const SparkImage& image, double width, double height, int reach, int phases) {
    Canvas canvas(reach, phases);
    const std::vector<double> light(image.light.begin(), image.light.end());
    const auto pixelsAround = [&canvas, reach](double centre) { return SampleLine{-reach - centre, 1.0, canvas.side}; };
    for (int px = 0; px < phases; ++px) {
        const double centreX = static_cast<double>(px) / phases;
        const auto narrow = transposed(
            resampleLines(light, image.width, tapsFor(pixelsAround(centreX), image.width, width)), canvas.side);
        for (int py = 0; py < phases; ++py) {
            const double centreY = static_cast<double>(py) / phases;
            const auto drawn = transposed(
                resampleLines(narrow, image.height, tapsFor(pixelsAround(centreY), image.height, height)), canvas.side);
            std::ranges::transform(drawn, canvas.row(py * phases + px, 0), [](double value) {
                return static_cast<std::int16_t>(std::min(value, 1.0) * 32767.0 + 0.5);
            });
        }
    }
    return canvas;
}

/// The smallest box that holds all light of all phases; empty boxes have right < left.
struct Box {
    int left;
    int top;
    int right = -1;
    int bottom = -1;
};

Box lightBox(Canvas& canvas) {
    Box box{canvas.side, canvas.side};
    for (int phase = 0; phase < canvas.phases * canvas.phases; ++phase) {
        for (int y = 0; y < canvas.side; ++y) {
            const std::int16_t* row = canvas.row(phase, y);
            for (int x = 0; x < canvas.side; ++x) {
                if (row[x] != 0) {
                    box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
                           std::max(box.bottom, y)};
                }
            }
        }
    }
    return box;
}

/// How many bits of the finest phase a sprite of that size does not tell apart.
int phaseShiftFor(double size) {
    return size < 32.0 ? 0 : size < 64.0 ? 1 : size < 128.0 ? 2 : 3;
}

/// The brightest pixels of each row and each column of all masks of a set.
struct Peaks {
    std::vector<std::int16_t> rows;
    std::vector<std::int16_t> columns;

    explicit Peaks(const SpriteSet& set)
        : rows(static_cast<std::size_t>(set.rows))
        , columns(static_cast<std::size_t>(set.stride)) {
        const auto end = set.masks.end() - SpriteSet::padding;
        for (auto mask = set.masks.begin() + SpriteSet::padding; mask != end;) {
            for (std::int16_t& row : rows) {
                for (std::int16_t& column : columns) {
                    row = std::max(row, *mask);
                    column = std::max(column, *mask++);
                }
            }
        }
    }
};

/// First and number of the peaks that leave light under a tint of at most `tint`.
std::pair<int, int> visible(const std::vector<std::int16_t>& peaks, int tint) {
    const auto leavesLight = [tint](std::int16_t peak) { return peak * tint >= 1 << 14; }; // As the kernels round.
    const auto first = std::ranges::find_if(peaks, leavesLight);
    const auto last = std::find_if(peaks.rbegin(), std::make_reverse_iterator(first), leavesLight);
    return {static_cast<int>(first - peaks.begin()), static_cast<int>(last.base() - first)};
}

void findBoxes(SpriteSet& set) {
    const Peaks peaks(set);
    int tint = (1 << 15) - 1;
    for (SpriteBox& box : set.boxes) {
        const auto [firstRow, rows] = visible(peaks.rows, tint);
        const auto [firstColumn, columns] = visible(peaks.columns, tint);
        box = {static_cast<std::uint32_t>(firstRow * set.stride + firstColumn),
               static_cast<std::int16_t>(set.left + firstColumn), static_cast<std::int16_t>(set.top + firstRow),
               static_cast<std::uint16_t>(columns), static_cast<std::uint16_t>(rows)};
        tint /= 2;
    }
}

} // namespace

SpriteAtlas::SpriteAtlas(std::shared_ptr<const SparkImage> image)
    : m_image(std::move(image))
    , m_sizeInPoints(static_cast<float>(std::max(m_image->width, m_image->height) / m_image->pixelsPerPoint))
    , m_angles(looksTheSameFromAllSides(*m_image) ? 1 : angleCount)
    , m_sets(static_cast<std::size_t>(m_angles) * SpriteSizes::count) {}

int SpriteAtlas::angleStep(float rotation) {
    const float turns = rotation * static_cast<float>(0.5 / std::numbers::pi);
    const float turn = turns - std::floor(turns);
    return static_cast<int>(turn * angleCount + 0.5F) % angleCount;
}

std::unique_ptr<SpriteSet> SpriteAtlas::make(int key) const {
    auto set = std::make_unique<SpriteSet>();
    const double size = sizeOfStep(key % SpriteSizes::count);
    set->phaseShift = phaseShiftFor(size);
    if (size == 0.0) {
        return set;
    }
    const int angle = key / SpriteSizes::count;
    const SparkImage turned = angle == 0 ? *m_image : rotated(*m_image, angle * 2.0 * std::numbers::pi / angleCount);
    const double zoom = size / std::max(m_image->width, m_image->height);
    const int phases = finestPhases >> set->phaseShift;
    // A turned image can be as long as its diagonal; the rounding up, the phase and the pixel's own extent add one
    // each.
    const int reach = static_cast<int>(size * 0.7072) + 3;
    Canvas canvas = drawAllPhases(turned, turned.width * zoom, turned.height * zoom, reach, phases);
    const Box box = lightBox(canvas);
    if (box.right < box.left) {
        return set;
    }
    const int width = box.right - box.left + 1;
    set->left = box.left - canvas.reach;
    set->top = box.top - canvas.reach;
    set->rows = box.bottom - box.top + 1;
    set->stride = width;
    set->masks.assign(SpriteSet::padding, 0);
    set->masks.reserve(static_cast<std::size_t>(phases * phases) * static_cast<std::size_t>(set->rows * width) +
                       2 * SpriteSet::padding);
    for (int phase = 0; phase < phases * phases; ++phase) {
        for (int y = box.top; y <= box.bottom; ++y) {
            const std::int16_t* row = canvas.row(phase, y) + box.left;
            set->masks.insert(set->masks.end(), row, row + width);
        }
    }
    set->masks.insert(set->masks.end(), SpriteSet::padding, 0);
    findBoxes(*set);
    return set;
}

void SpriteAtlas::install(int key, std::unique_ptr<SpriteSet> set) {
    m_bytes += set->masks.size() * sizeof(std::int16_t);
    m_sets[static_cast<std::size_t>(key)] = std::move(set);
}

void SpriteAtlas::clear() {
    for (auto& set : m_sets) {
        set.reset();
    }
    m_bytes = 0;
}

} // namespace starbloom
