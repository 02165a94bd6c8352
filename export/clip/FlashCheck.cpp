// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/FlashCheck.h"

#include "export/clip/FlashCounter.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <vector>

namespace starbloom {

namespace {

constexpr int longerSideSpots = 48;

/// The levels of all spots of a frame, row after row.
struct SpotLight {
    explicit SpotLight(SpotGrid grid)
        : luminance(static_cast<std::size_t>(grid.columns * grid.rows))
        , redness(luminance.size()) {}

    std::vector<SpotLevel> luminance;
    std::vector<SpotLevel> redness;
};

bool isLuminanceChange(const SpotLevel& one, const SpotLevel& other) {
    const auto [darker, lighter] = std::minmax(one.value, other.value);
    return 10 * (lighter - darker) >= fullLight && 10 * darker < 8 * fullLight;
}

bool isRedChange(const SpotLevel& one, const SpotLevel& other) {
    return 16 * std::abs(one.value - other.value) > fullLight && (one.isRed || other.isRed);
}

SpotGrid gridFor(int width, int height) {
    const int longer = std::max(width, height);
    const auto spots = [&](int side) {
        return std::clamp(static_cast<int>(std::lround(1.0 * longerSideSpots * side / longer)), 1, side);
    };
    return {spots(width), spots(height)};
}

/// Averages the pixels of each spot.
class SpotReader {
public:
    SpotReader(int width, int height, SpotGrid grid)
        : m_width(width)
        , m_height(height)
        , m_grid(grid)
        , m_columnOf(static_cast<std::size_t>(width))
        , m_sums(static_cast<std::size_t>(grid.columns)) {
        for (int x = 0; x < width; ++x) {
            m_columnOf[static_cast<std::size_t>(x)] =
                static_cast<std::size_t>(static_cast<std::int64_t>(x) * grid.columns / width);
        }
        for (std::size_t i = 0; i < m_linear.size(); ++i) {
            const double value = static_cast<double>(i) / 255.0;
            const double light = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
            m_linear[i] = static_cast<std::uint32_t>(std::lround(light * fullLight));
        }
    }

    void read(const ImageBuffer& frame, SpotLight& light) {
        for (int row = 0; row < m_grid.rows; ++row) {
            const auto edge = [&](int r) {
                return static_cast<int>(static_cast<std::int64_t>(r) * m_height / m_grid.rows);
            };
            sumRow(frame, edge(row), edge(row + 1));
            const auto first = static_cast<std::size_t>(row * m_grid.columns);
            std::ranges::transform(m_sums, &light.luminance[first], luminanceOf);
            std::ranges::transform(m_sums, &light.redness[first], rednessOf);
        }
    }

private:
    struct Sum {
        std::uint64_t red = 0;
        std::uint64_t green = 0;
        std::uint64_t blue = 0;
        std::uint64_t pixels = 0;
    };

    void sumRow(const ImageBuffer& frame, int top, int bottom) {
        std::ranges::fill(m_sums, Sum());
        for (int y = top; y < bottom; ++y) {
            const std::uint8_t* pixel = frame.row(y);
            for (const std::size_t column : m_columnOf) {
                Sum& sum = m_sums[column];
                sum.red += m_linear[pixel[0]];
                sum.green += m_linear[pixel[1]];
                sum.blue += m_linear[pixel[2]];
                ++sum.pixels;
                pixel += ImageBuffer::channels;
            }
        }
    }

    /// The mean of a sum of light.
    static int mean(const Sum& sum, std::uint64_t light) {
        return static_cast<int>((light + sum.pixels / 2) / sum.pixels);
    }

    static SpotLevel luminanceOf(const Sum& sum) {
        const int weighted = 2126 * mean(sum, sum.red) + 7152 * mean(sum, sum.green) + 722 * mean(sum, sum.blue);
        return {(weighted + 5000) / 10000, false};
    }

    static SpotLevel rednessOf(const Sum& sum) {
        const int red = mean(sum, sum.red);
        const int others = mean(sum, sum.green) + mean(sum, sum.blue);
        return {std::max(red - others, 0), red > 0 && 10 * red >= 8 * (red + others)};
    }

    int m_width;
    int m_height;
    SpotGrid m_grid;
    std::vector<std::size_t> m_columnOf;
    std::vector<Sum> m_sums;
    std::array<std::uint32_t, 256> m_linear{};
};

} // namespace

class FlashCheck::Analysis {
public:
    Analysis(int width, int height, FrameRate rate, Playback playback)
        : m_playback(playback)
        , m_rate(rate)
        , m_replayed(static_cast<std::size_t>(std::ceil(replayedSeconds * rate.perSecond())))
        , m_grid(gridFor(width, height))
        , m_reader(width, height, m_grid)
        , m_light(m_grid)
        , m_counters{{m_grid, rate, isLuminanceChange}, {m_grid, rate, isRedChange}} {}

    void add(const ImageBuffer& frame) {
        m_reader.read(frame, m_light);
        m_counters.add(m_light);
        ++m_frames;
        if (m_playback == Playback::RoundAndRound && m_opening.size() < m_replayed) {
            m_opening.push_back(m_light);
        }
    }

    FlashReport report() const { return m_opening.empty() ? m_counters.report() : reportOfRounds(); }

private:
    struct Counters {
        FlashCounter general;
        FlashCounter red;

        void add(const SpotLight& light) {
            general.add(light.luminance);
            red.add(light.redness);
        }

        FlashReport report() const { return {general.finding(), red.finding()}; }
    };

    /// In the first round the spots have no past yet, so a whole second is looked at after the first one is over.
    static constexpr double replayedSeconds = 2.0;

    FlashReport reportOfRounds() const {
        Counters counters = m_counters;
        for (std::size_t i = 0; i < m_replayed; ++i) {
            counters.add(m_opening[i % m_opening.size()]);
        }
        FlashReport report = counters.report();
        const double round = static_cast<double>(m_frames) / m_rate.perSecond();
        for (FlashFinding* finding : {&report.general, &report.red}) {
            finding->start = std::fmod(finding->start, round);
        }
        return report;
    }

    Playback m_playback;
    FrameRate m_rate;
    std::size_t m_replayed; ///< Frames.
    SpotGrid m_grid;
    SpotReader m_reader;
    SpotLight m_light;
    Counters m_counters;
    std::vector<SpotLight> m_opening; ///< Of a round: as many of its first frames as are seen again, or all.
    std::int64_t m_frames = 0;
};

FlashCheck::FlashCheck(int width, int height, FrameRate rate, Playback playback)
    : m_analysis(std::make_unique<Analysis>(width, height, rate, playback)) {
    assert(width > 0 && height > 0 && rate.frames > 0 && rate.seconds > 0);
}

FlashCheck::~FlashCheck() = default;
FlashCheck::FlashCheck(FlashCheck&& other) noexcept = default;
FlashCheck& FlashCheck::operator=(FlashCheck&& other) noexcept = default;

void FlashCheck::add(const ImageBuffer& frame) {
    m_analysis->add(frame);
}

FlashReport FlashCheck::report() const {
    return m_analysis->report();
}

} // namespace starbloom
