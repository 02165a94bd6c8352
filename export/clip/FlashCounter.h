// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/clip/FlashCheck.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace starbloom {

// How FlashCheck counts, once it knows the light of each spot. Not for headers that others include.

/// Linear light is a whole number up to this.
inline constexpr int fullLight = 65535;

/// The light of a spot. Whether red is saturated there counts for red changes only.
struct SpotLevel {
    int value = 0;
    bool isRed = false;
};

/// Whether going from one level to another is a change; the order does not matter.
using IsChange = bool (*)(const SpotLevel& one, const SpotLevel& other);

struct SpotGrid {
    int columns;
    int rows;
};

enum class ChangeDirection { None, Rise, Fall };

/// Follows one spot from turning point to turning point.
class FlashSpot {
public:
    /// The change that is complete with this level, if one is.
    ChangeDirection follow(const SpotLevel& level, IsChange isChange);

private:
    bool m_isNew = true;
    ChangeDirection m_last = ChangeDirection::None;
    SpotLevel m_lowest; ///< Since the last change, as is the next one.
    SpotLevel m_highest;
};

/// Counts the changes of all fields, for one kind of change.
class FlashCounter {
public:
    FlashCounter(SpotGrid grid, FrameRate rate, IsChange isChange);

    /// The levels of all spots in the next frame, row after row.
    void add(std::span<const SpotLevel> levels);

    const FlashFinding& finding() const { return m_finding; }

private:
    using Stamps = std::vector<std::int64_t>; ///< The frame in which each spot changed last.

    struct FieldChange {
        std::int64_t frame = 0;
        int spots = 0;
    };

    struct Field {
        ChangeDirection last = ChangeDirection::None;
        std::int64_t lastRise = never;
        std::int64_t lastFall = never;
        std::deque<FieldChange> changes; ///< Those of the last second.
    };

    static constexpr std::int64_t never = -1'000'000;

    void lookForChange(const Stamps& stamps, ChangeDirection direction);
    void lookAtField(const Stamps& stamps, ChangeDirection direction, int column, int row);
    void note(const Field& field, int column, int row);

    /// Whether two frames are less than 1 / `part` seconds apart.
    bool isWithin(std::int64_t earlier, int part) const {
        return (m_frame - earlier) * part * m_rate.seconds < m_rate.frames;
    }

    SpotGrid m_grid;
    SpotGrid m_field;
    FrameRate m_rate;
    IsChange m_isChange;
    std::vector<FlashSpot> m_spots;
    Stamps m_rises;
    Stamps m_falls;
    std::vector<Field> m_fields;
    std::int64_t m_frame = -1;
    std::size_t m_mostChanges = 0;
    FlashFinding m_finding;
};

} // namespace starbloom
