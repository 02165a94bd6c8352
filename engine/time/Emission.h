// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/time/Random.h"

#include <cstdint>
#include <limits>

namespace starbloom {

/// The stream of births that one emitter particle gives from one of its child cells.
///
/// Births are numbered. At a rate of r there is exactly one in each slot of length 1/r, at a place within the slot that
/// is drawn from the birth's own random number. The stream's phase is the integral of the rate, and birth n comes at
/// phase n + u(n); a change of the rate keeps the phase, so it causes neither a burst nor a gap. When a birth comes is
/// computed from the last change of the rate alone, never from how far the stream has been followed, so it does not
/// depend on the steps that time is advanced in.
class Emission {
public:
    /// A stream that starts at `begin` and ends before `end`, both in the layer's own time. `emitter` and `childSlot`
    /// say whose births these are. With a `round` the births after so many are the same ones again.
    Emission(ParticleKey emitter, int childSlot, double begin, double end, double rate, std::uint64_t round = 0);

    /// A birth that has come due.
    struct Birth {
        ParticleKey key;
        double time;
    };

    /// Whether another birth comes at or before `time`.
    bool hasBirthUpTo(double time) const { return m_nextTime <= time; }

    /// The next birth, which is thereby taken off the stream.
    Birth take();

    /// Leaves out all births up to `time`, at a cost that does not depend on their number. Yields how many there were.
    std::uint64_t skipTo(double time);

    /// From `now` on births come at another rate. All births up to `now` must have been taken or skipped.
    void setRate(double rate, double now);

private:
    static constexpr double never = std::numeric_limits<double>::infinity();

    double phaseAt(double time) const;
    void findNext();

    ParticleKey m_emitter;
    int m_childSlot;
    double m_end;
    double m_rate;
    std::uint64_t m_round;
    double m_segmentStart;       ///< Since when the rate has been in force (or will be).
    double m_segmentPhase = 0.0; ///< The phase at that moment.
    std::uint64_t m_nextIndex = 0;
    ParticleKey m_nextKey = 0;
    double m_nextTime = never;
};

} // namespace starbloom
