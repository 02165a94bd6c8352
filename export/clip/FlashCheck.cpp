// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/FlashCheck.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <deque>
#include <vector>

namespace starbloom {

namespace {

constexpr int longerSideSpots = 48;
constexpr std::size_t mostChanges = 6; ///< Three flashes.

/// Linear light is a whole number up to this.
constexpr int fullLight = 65535;

/// The light of a spot. Whether red is saturated there counts for red changes only.
struct Level {
    int value = 0;
    bool isRed = false;
};

struct SpotLight {
    Level luminance;
    Level redness;
};

/// Whether going from one level to another is a change; the order does not matter.
using IsChange = bool (*)(const Level& one, const Level& other);

bool isLuminanceChange(const Level& one, const Level& other) {
    const auto [darker, lighter] = std::minmax(one.value, other.value);
    return 10 * (lighter - darker) >= fullLight && 10 * darker < 8 * fullLight;
}

bool isRedChange(const Level& one, const Level& other) {
    return 16 * std::abs(one.value - other.value) > fullLight && (one.isRed || other.isRed);
}

struct GridSize {
    int columns;
    int rows;
};

GridSize gridFor(int width, int height) {
    const int longer = std::max(width, height);
    const auto spots = [&](int side) {
        return std::clamp(static_cast<int>(std::lround(1.0 * longerSideSpots * side / longer)), 1, side);
    };
    return {spots(width), spots(height)};
}

/// Averages the pixels of each spot.
class SpotReader {
public:
    SpotReader(int width, int height, GridSize grid)
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

    void read(const ImageBuffer& frame, std::vector<SpotLight>& spots) {
        for (int row = 0; row < m_grid.rows; ++row) {
            const auto edge = [&](int r) {
                return static_cast<int>(static_cast<std::int64_t>(r) * m_height / m_grid.rows);
            };
            readRow(frame, edge(row), edge(row + 1), &spots[static_cast<std::size_t>(row * m_grid.columns)]);
        }
    }

private:
    struct Sum {
        std::uint64_t red = 0;
        std::uint64_t green = 0;
        std::uint64_t blue = 0;
        std::uint64_t pixels = 0;
    };

    void readRow(const ImageBuffer& frame, int top, int bottom, SpotLight* spots) {
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
        std::ranges::transform(m_sums, spots, lightOf);
    }

    static SpotLight lightOf(const Sum& sum) {
        const auto mean = [&](std::uint64_t light) { return static_cast<int>((light + sum.pixels / 2) / sum.pixels); };
        const int red = mean(sum.red);
        const int green = mean(sum.green);
        const int blue = mean(sum.blue);
        SpotLight light;
        light.luminance.value = (2126 * red + 7152 * green + 722 * blue + 5000) / 10000;
        light.redness.value = std::max(red - green - blue, 0);
        light.redness.isRed = red > 0 && 10 * red >= 8 * (red + green + blue);
        return light;
    }

    int m_width;
    int m_height;
    GridSize m_grid;
    std::vector<std::size_t> m_columnOf;
    std::vector<Sum> m_sums;
    std::array<std::uint32_t, 256> m_linear{};
};

enum class Direction { None, Rise, Fall };

/// Follows one spot from turning point to turning point.
class Spot {
public:
    /// The change that is complete with this level, if one is.
    Direction follow(const Level& level, IsChange isChange) {
        if (m_isNew) {
            m_lowest = m_highest = level;
            m_isNew = false;
        }
        if (level.value <= m_lowest.value) {
            m_lowest = level;
        }
        if (level.value >= m_highest.value) {
            m_highest = level;
        }
        if (m_last != Direction::Rise && level.value > m_lowest.value && isChange(m_lowest, level)) {
            m_highest = level;
            return m_last = Direction::Rise;
        }
        if (m_last != Direction::Fall && level.value < m_highest.value && isChange(level, m_highest)) {
            m_lowest = level;
            return m_last = Direction::Fall;
        }
        return Direction::None;
    }

private:
    bool m_isNew = true;
    Direction m_last = Direction::None;
    Level m_lowest; ///< Since the last change, as is the next one.
    Level m_highest;
};

/// Counts the changes of all fields, for one kind of change.
class FlashCounter {
public:
    FlashCounter(GridSize grid, FrameRate rate, IsChange isChange)
        : m_grid(grid)
        , m_field{std::max((grid.columns + 1) / 3, 1), std::max((grid.rows + 1) / 3, 1)}
        , m_rate(rate)
        , m_isChange(isChange)
        , m_spots(static_cast<std::size_t>(grid.columns * grid.rows))
        , m_rises(m_spots.size(), never)
        , m_falls(m_spots.size(), never)
        , m_fields(static_cast<std::size_t>((grid.columns - m_field.columns + 1) * (grid.rows - m_field.rows + 1))) {}

    template <typename LevelAt>
    void add(const LevelAt& levelAt);

    const FlashFinding& finding() const { return m_finding; }

private:
    using Stamps = std::vector<std::int64_t>; ///< The frame in which each spot changed last.

    struct FieldChange {
        std::int64_t frame = 0;
        int spots = 0;
    };

    struct Field {
        Direction last = Direction::None;
        std::int64_t lastRise = never;
        std::int64_t lastFall = never;
        std::deque<FieldChange> changes; ///< Those of the last second.
    };

    static constexpr std::int64_t never = -1'000'000;

    void lookForChange(const Stamps& stamps, Direction direction);
    void lookAtField(const Stamps& stamps, Direction direction, int column, int row);
    void note(const Field& field, int column, int row);

    /// Whether two frames are less than 1 / `part` seconds apart.
    bool isWithin(std::int64_t earlier, int part) const {
        return (m_frame - earlier) * part * m_rate.seconds < m_rate.frames;
    }

    GridSize m_grid;
    GridSize m_field;
    FrameRate m_rate;
    IsChange m_isChange;
    std::vector<Spot> m_spots;
    Stamps m_rises;
    Stamps m_falls;
    std::vector<Field> m_fields;
    std::int64_t m_frame = -1;
    std::size_t m_mostChanges = 0;
    FlashFinding m_finding;
};

template <typename LevelAt>
void FlashCounter::add(const LevelAt& levelAt) {
    ++m_frame;
    bool hasRise = false;
    bool hasFall = false;
    for (std::size_t i = 0; i < m_spots.size(); ++i) {
        const Direction change = m_spots[i].follow(levelAt(i), m_isChange);
        if (change == Direction::Rise) {
            m_rises[i] = m_frame;
            hasRise = true;
        } else if (change == Direction::Fall) {
            m_falls[i] = m_frame;
            hasFall = true;
        }
    }
    if (hasRise) {
        lookForChange(m_rises, Direction::Rise);
    }
    if (hasFall) {
        lookForChange(m_falls, Direction::Fall);
    }
}

void FlashCounter::lookForChange(const Stamps& stamps, Direction direction) {
    // Mostly too little changes for any field, which is quickly told.
    const auto recent = std::ranges::count_if(stamps, [&](std::int64_t stamp) { return isWithin(stamp, 10); });
    if (4 * recent <= m_field.columns * m_field.rows) {
        return;
    }
    for (int row = 0; row + m_field.rows <= m_grid.rows; ++row) {
        for (int column = 0; column + m_field.columns <= m_grid.columns; ++column) {
            lookAtField(stamps, direction, column, row);
        }
    }
}

void FlashCounter::lookAtField(const Stamps& stamps, Direction direction, int column, int row) {
    const auto perRow = static_cast<std::size_t>(m_grid.columns - m_field.columns + 1);
    Field& field = m_fields[static_cast<std::size_t>(row) * perRow + static_cast<std::size_t>(column)];
    if (field.last == direction) {
        return;
    }
    // What has been a part of one change of the field is not a part of the next.
    std::int64_t& last = direction == Direction::Rise ? field.lastRise : field.lastFall;
    const std::int64_t since = std::max(last + 1, m_frame - (m_rate.frames - 1) / (10 * m_rate.seconds));
    int spots = 0;
    for (int y = row; y < row + m_field.rows; ++y) {
        const std::int64_t* stamp = &stamps[static_cast<std::size_t>(y * m_grid.columns + column)];
        for (int x = 0; x < m_field.columns; ++x) {
            spots += stamp[x] >= since ? 1 : 0;
        }
    }
    if (4 * spots <= m_field.columns * m_field.rows) {
        return;
    }
    field.last = direction;
    last = m_frame;
    while (!field.changes.empty() && !isWithin(field.changes.front().frame, 1)) {
        field.changes.pop_front();
    }
    field.changes.push_back({m_frame, spots});
    note(field, column, row);
}

/// Keeps the worst second: the first one with the most changes.
void FlashCounter::note(const Field& field, int column, int row) {
    const int spots = std::ranges::max_element(field.changes, {}, &FieldChange::spots)->spots;
    const double area = 1.0 * spots / (m_field.columns * m_field.rows);
    const std::size_t changes = field.changes.size();
    const double start = 1.0 * static_cast<double>(field.changes.front().frame) / m_rate.perSecond();
    const bool isWorse =
        changes > m_mostChanges || (changes == m_mostChanges && start == m_finding.start && area > m_finding.area);
    if (!isWorse) {
        return;
    }
    m_mostChanges = changes;
    m_finding.passes = changes <= mostChanges;
    m_finding.flashes = static_cast<double>(changes) / 2.0;
    m_finding.start = start;
    m_finding.area = area;
    m_finding.x = (column + m_field.columns / 2.0) / m_grid.columns;
    m_finding.y = (row + m_field.rows / 2.0) / m_grid.rows;
}

} // namespace

class FlashCheck::Analysis {
public:
    Analysis(int width, int height, FrameRate rate)
        : m_grid(gridFor(width, height))
        , m_reader(width, height, m_grid)
        , m_light(static_cast<std::size_t>(m_grid.columns * m_grid.rows))
        , m_general(m_grid, rate, isLuminanceChange)
        , m_red(m_grid, rate, isRedChange) {}

    void add(const ImageBuffer& frame) {
        m_reader.read(frame, m_light);
        m_general.add([&](std::size_t i) { return m_light[i].luminance; });
        m_red.add([&](std::size_t i) { return m_light[i].redness; });
    }

    FlashReport report() const { return {m_general.finding(), m_red.finding()}; }

private:
    GridSize m_grid;
    SpotReader m_reader;
    std::vector<SpotLight> m_light;
    FlashCounter m_general;
    FlashCounter m_red;
};

FlashCheck::FlashCheck(int width, int height, FrameRate rate)
    : m_analysis(std::make_unique<Analysis>(width, height, rate)) {
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
