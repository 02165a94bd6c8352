// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MotionBlur.h"

#include <oneapi/tbb/parallel_for.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace starbloom {

namespace {

/// Sparkles live a twentieth of a second, so their light is looked at several times in it.
constexpr double momentsPerSecond = 240.0;

/// A quarter of what is bright of a trail's spark: longer steps show as beads.
constexpr double pointsPerStep = 1.5;

/// With so few it does not matter that steps of a pixel are finer than anybody sees.
constexpr double fewSteps = 64.0;

constexpr double fullLinear = 65535.0;

/// The light that a display gives for a value of 0 to 1 (sRGB).
double linearOf(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

struct LightTables {
    std::array<std::uint16_t, 256> linear;
    std::vector<std::uint8_t> display; ///< By linear light.

    LightTables()
        : display(static_cast<std::size_t>(fullLinear) + 1) {
        std::size_t from = 0;
        for (int value = 0; value < 256; ++value) {
            linear[static_cast<std::size_t>(value)] =
                static_cast<std::uint16_t>(std::lround(fullLinear * linearOf(value / 255.0)));
            const double half = value < 255 ? linearOf((value + 0.5) / 255.0) : 1.0;
            const auto to = static_cast<std::size_t>(fullLinear * half) + 1;
            std::fill(display.begin() + static_cast<std::ptrdiff_t>(from),
                      display.begin() + static_cast<std::ptrdiff_t>(to), static_cast<std::uint8_t>(value));
            from = to;
        }
    }
};

const LightTables& lightTables() {
    static const LightTables tables;
    return tables;
}

/// The square of the speed of a spark of that age, in points per second.
double squaredSpeed(const SparkBatch& batch, std::size_t i, double age) {
    const double x = static_cast<double>(batch.velocityX[i]);
    const double y = static_cast<double>(batch.velocityY[i]) + static_cast<double>(batch.law().yAcceleration) * age;
    return x * x + y * y;
}

/// The fastest that any spark of the batch is between two moments, squared; negative when none lives.
double fastestSquared(const SparkBatch& batch, double opening, double closing) {
    double fastest = -1.0;
    const double lifetime = static_cast<double>(batch.law().lifetime);
    for (std::size_t i = 0; i < batch.size(); ++i) {
        const double youngest = std::max(opening - batch.time[i], 0.0);
        const double oldest = std::min(closing - batch.time[i], lifetime);
        if (oldest >= youngest) { // Speed is convex in time: an end has the most.
            fastest = std::max({fastest, squaredSpeed(batch, i, youngest), squaredSpeed(batch, i, oldest)});
        }
    }
    return fastest;
}

} // namespace

BlurSteps::BlurSteps(Show show, double exposure, double pixelsPerPoint)
    : m_ahead(std::move(show))
    , m_exposure(exposure)
    , m_pixelsPerPoint(pixelsPerPoint) {}

int BlurSteps::at(double moment) {
    const Simulation& simulation = m_ahead.at(moment + m_exposure);
    double fastest = -1.0;
    for (const SparkBatch& batch : simulation.sparks()) {
        fastest = std::max(fastest, fastestSquared(batch, moment, moment + m_exposure));
    }
    if (fastest < 0.0) {
        return 1;
    }
    const double points = std::sqrt(fastest) * m_exposure;
    const double forWay = std::min(points * m_pixelsPerPoint, std::max(points / pointsPerStep, fewSteps));
    const double steps = std::ceil(std::max(forWay, m_exposure * momentsPerSecond));
    return static_cast<int>(std::clamp(steps, 1.0, static_cast<double>(most)));
}

void LightAverage::add(const ImageBuffer& image) {
    const LightTables& tables = lightTables();
    const auto rowValues = static_cast<std::size_t>(image.width()) * 3;
    if (m_count == 0) {
        m_sums.assign(rowValues * static_cast<std::size_t>(image.height()), 0);
    }
    ++m_count;
    oneapi::tbb::parallel_for(0, image.height(), [&](int y) {
        const std::uint8_t* in = image.row(y);
        std::uint32_t* sums = m_sums.data() + static_cast<std::size_t>(y) * rowValues;
        for (int x = 0; x < image.width(); ++x, in += ImageBuffer::channels, sums += 3) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                sums[channel] += tables.linear[in[channel]];
            }
        }
    });
}

void LightAverage::take(ImageBuffer& image) {
    const LightTables& tables = lightTables();
    const auto rowValues = static_cast<std::size_t>(image.width()) * 3;
    oneapi::tbb::parallel_for(0, image.height(), [&](int y) {
        const std::uint32_t* sums = m_sums.data() + static_cast<std::size_t>(y) * rowValues;
        std::uint8_t* out = image.row(y);
        for (int x = 0; x < image.width(); ++x, out += ImageBuffer::channels, sums += 3) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                out[channel] = tables.display[(sums[channel] + m_count / 2) / m_count];
            }
            out[3] = 255;
        }
    });
    m_count = 0;
}

} // namespace starbloom
