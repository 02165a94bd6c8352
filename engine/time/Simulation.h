// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/time/AncestryBound.h"
#include "engine/time/Emission.h"
#include "engine/time/EmitterPlan.h"
#include "engine/time/SparkBatch.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace starbloom {

/// The particles of a show in time.
///
/// A show is a pure function of its seed, its plan over time, and the moment: nothing depends on the number or the size
/// of the steps by which time is advanced. A particle reads its cell's numbers once, at birth; a new plan touches only
/// particles born later. Time is the layer's own, in seconds from 0.
///
///     Simulation simulation(seed, EmitterPlan::of(layer));
///     simulation.advanceTo(5.0);
///     for (const SparkBatch& batch : simulation.sparks()) ...
///
/// Not thread-safe; several simulations are independent of one another. Never fails: what a hostile plan would need
/// beyond liveCeiling particles is not born, and logged.
class Simulation {
public:
    /// At most so many particles live at once; further births are left out and counted. A million is more than twenty
    /// times what the sliders can ask for. Only beyond it does a moment depend on the moments before.
    static constexpr std::size_t liveCeiling = 1'000'000;

    /// At most so many of them emit. An emitter takes several times the memory of a spark.
    static constexpr std::size_t emitterCeiling = 100'000;

    /// A batch takes so many sparks; then another one is begun. Old batches so die as a whole, and neither growth nor
    /// the removal of the dead ever moves more than a batch, however many sparks there are.
    static constexpr std::size_t sparksPerBatch = 4096;

    /// Time ends here, after some thirty years of layer time: beyond, births could no longer be told apart.
    static constexpr double latestTime = 1.0e9;

    /// Stands at time 0, before the first birth.
    Simulation(std::uint64_t seed, EmitterPlan plan);

    double time() const { return m_time; }

    const EmitterPlan& plan() const { return m_plan; }

    /// From the present moment on births follow another plan. The phases of all streams of births are kept. A plan of
    /// another shape starts the show's births anew, without a particle left.
    void setPlan(EmitterPlan plan);

    /// Moves on to a later time, latestTime at most; an earlier one is ignored. A step longer than any ancestry costs
    /// no more than one of that length.
    void advanceTo(double time);

    /// Moves on like advanceTo(), but forgets all particles born so far instead of giving birth to the others. Right
    /// for a moment from which on nothing born before will be looked at.
    void jumpTo(double time);

    /// The drawn particles, in no particular order. Some may have died since; SparkBatch tells. Valid until the next
    /// call that changes something.
    std::span<const SparkBatch> sparks() const { return m_sparks; }

    /// How many particles have been born from each cell of the plan, left-out ones not counted.
    std::span<const std::uint64_t> birthCounts() const { return m_birthCounts; }

    /// How many births the ceiling has cost so far.
    std::uint64_t skippedBirths() const { return m_skippedBirths; }

private:
    /// A particle that gives birth to others. Invisible ones are nothing but this.
    struct Emitter {
        ParticleKey key = 0;
        double birth = 0.0;
        double death = 0.0;
        double x = 0.0;
        double y = 0.0;
        Vector3 velocity;
        double yAcceleration = 0.0;
        Color color;
        Color colorSpeed;
    };

    /// All emitters from one cell. Each has one stream per child cell, in `emissions` at emitter x children + child.
    struct Population {
        std::vector<Emitter> emitters;
        std::vector<Emission> emissions;
        double firstDeath = std::numeric_limits<double>::infinity(); ///< None of them dies before this moment.
    };

    void restart();
    void giveBirths(std::size_t cell);
    void giveBirths(std::size_t cell, const Emitter& emitter, Emission& emission);
    void makeParticle(std::size_t cell, const Emitter& emitter, const Emission::Birth& birth);
    void makeEmitter(std::size_t cell, const Emitter& particle);
    SparkLaw lawOf(std::size_t cell) const;
    SparkBatch& batchFor(std::size_t cell);
    void beginBatch(std::size_t cell);
    bool isSweepDue() const;
    void removeDeadEmitters();
    void sweepSparks();
    std::size_t liveCount() const;
    void reportSkipped(std::uint64_t before);

    std::uint64_t m_seed;
    EmitterPlan m_plan;
    AncestryBound m_ancestry; ///< Of all plans so far.
    double m_time = 0.0;
    double m_lastSweep = 0.0;

    Emitter m_source;                     ///< Stands for the layer, the emitter of the top cells.
    std::vector<Emission> m_topEmissions; ///< One per cell of the plan; unused for cells that are not at the top.
    std::vector<Population> m_populations;
    std::vector<SparkBatch> m_sparks;
    std::vector<SparkBatch> m_emptyBatches; ///< Kept for their memory, see sweepSparks().
    std::uint64_t m_batchNumber = 0;        ///< Of the newest batch.
    std::vector<int> m_currentBatch;        ///< Per cell: where its births go now; -1 when there is no batch yet.
    std::vector<std::uint64_t> m_birthCounts;
    std::size_t m_emitterCount = 0;
    std::size_t m_sparkCount = 0;
    std::uint64_t m_skippedBirths = 0;
    std::uint64_t m_nextReport = 1;
};

} // namespace starbloom
