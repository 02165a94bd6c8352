// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Emission.h"

#include <algorithm>
#include <cmath>

namespace starbloom {

Emission::Emission(ParticleKey emitter, int childSlot, double begin, double end, double rate, std::uint64_t round)
    : m_emitter(emitter)
    , m_childSlot(childSlot)
    , m_end(end)
    , m_rate(rate)
    , m_round(round)
    , m_segmentStart(begin) {
    findNext();
}

Emission::Birth Emission::take() {
    const Birth birth{m_nextKey, m_nextTime};
    ++m_nextIndex;
    findNext();
    return birth;
}

std::uint64_t Emission::skipTo(double time) {
    if (!hasBirthUpTo(time)) {
        return 0;
    }
    const std::uint64_t before = m_nextIndex;
    // Every birth below the whole part of the phase has come; only the neighbours of that number need a look.
    const double phase = std::floor(phaseAt(std::min(time, m_end)));
    if (phase > static_cast<double>(m_nextIndex) + 1.0) {
        m_nextIndex = static_cast<std::uint64_t>(phase) - 1;
    }
    findNext();
    while (hasBirthUpTo(time)) {
        take();
    }
    return m_nextIndex - before;
}

void Emission::setRate(double rate, double now) {
    if (rate == m_rate) {
        return; // Splitting the segment would move births by a last bit.
    }
    if (now > m_segmentStart) {
        m_segmentPhase = phaseAt(now);
        m_segmentStart = now;
    }
    m_rate = rate;
    findNext();
}

double Emission::phaseAt(double time) const {
    return m_segmentPhase + m_rate * (time - m_segmentStart);
}

void Emission::findNext() {
    if (!(m_rate > 0.0)) {
        m_nextTime = never;
        return;
    }
    const std::uint64_t index = m_round == 0 ? m_nextIndex : m_nextIndex % m_round;
    m_nextKey = birthKey(m_emitter, static_cast<std::uint64_t>(m_childSlot), index);
    const double phase = static_cast<double>(m_nextIndex) + uniform(m_nextKey, Draw::Moment);
    // Rounding may place a birth that is due at the very start of a segment a last bit before it.
    const double time = m_segmentStart + std::max(phase - m_segmentPhase, 0.0) / m_rate;
    m_nextTime = time < m_end ? time : never;
}

} // namespace starbloom
