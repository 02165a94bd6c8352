// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/FlashCounter.h"

#include <algorithm>

namespace starbloom {

namespace {

constexpr std::size_t mostChanges = 6; ///< Three flashes.

} // namespace

ChangeDirection FlashSpot::follow(const SpotLevel& level, IsChange isChange) {
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
    if (m_last != ChangeDirection::Rise && level.value > m_lowest.value && isChange(m_lowest, level)) {
        m_highest = level;
        return m_last = ChangeDirection::Rise;
    }
    if (m_last != ChangeDirection::Fall && level.value < m_highest.value && isChange(level, m_highest)) {
        m_lowest = level;
        return m_last = ChangeDirection::Fall;
    }
    return ChangeDirection::None;
}

FlashCounter::FlashCounter(SpotGrid grid, FrameRate rate, IsChange isChange)
    : m_grid(grid)
    , m_field{std::max((grid.columns + 1) / 3, 1), std::max((grid.rows + 1) / 3, 1)}
    , m_rate(rate)
    , m_isChange(isChange)
    , m_spots(static_cast<std::size_t>(grid.columns * grid.rows))
    , m_rises(m_spots.size(), never)
    , m_falls(m_spots.size(), never)
    , m_fields(static_cast<std::size_t>((grid.columns - m_field.columns + 1) * (grid.rows - m_field.rows + 1))) {}

void FlashCounter::add(std::span<const SpotLevel> levels) {
    ++m_frame;
    bool hasRise = false;
    bool hasFall = false;
    for (std::size_t i = 0; i < m_spots.size(); ++i) {
        const ChangeDirection change = m_spots[i].follow(levels[i], m_isChange);
        if (change == ChangeDirection::Rise) {
            m_rises[i] = m_frame;
            hasRise = true;
        } else if (change == ChangeDirection::Fall) {
            m_falls[i] = m_frame;
            hasFall = true;
        }
    }
    if (hasRise) {
        lookForChange(m_rises, ChangeDirection::Rise);
    }
    if (hasFall) {
        lookForChange(m_falls, ChangeDirection::Fall);
    }
}

void FlashCounter::lookForChange(const Stamps& stamps, ChangeDirection direction) {
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

void FlashCounter::lookAtField(const Stamps& stamps, ChangeDirection direction, int column, int row) {
    const auto perRow = static_cast<std::size_t>(m_grid.columns - m_field.columns + 1);
    Field& field = m_fields[static_cast<std::size_t>(row) * perRow + static_cast<std::size_t>(column)];
    if (field.last == direction) {
        return;
    }
    // What has been a part of one change of the field is not a part of the next.
    std::int64_t& last = direction == ChangeDirection::Rise ? field.lastRise : field.lastFall;
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

} // namespace starbloom
