// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Simulation.h"

#include "base/Log.h"
#include "engine/time/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>
#include <utility>

namespace starbloom {

namespace {

constexpr double forever = std::numeric_limits<double>::infinity();

Color colorAt(const Color& color, const Color& speed, float age) {
    const auto channel = [age](float value, float change) { return std::clamp(value + change * age, 0.0F, 1.0F); };
    return {channel(color.red, speed.red), channel(color.green, speed.green), channel(color.blue, speed.blue),
            channel(color.alpha, speed.alpha)};
}

float ranged(float value, float range, ParticleKey key, Draw which) {
    return value + range * static_cast<float>(symmetric(key, which));
}

/// The particle's own colour with its ranges drawn, tinted by its emitter's colour of the moment.
Color bornColor(const CellPlan& cell, const Color& emitter, ParticleKey key) {
    return {ranged(cell.color.red, cell.colorRange.red, key, Draw::Red) * emitter.red,
            ranged(cell.color.green, cell.colorRange.green, key, Draw::Green) * emitter.green,
            ranged(cell.color.blue, cell.colorRange.blue, key, Draw::Blue) * emitter.blue,
            cell.color.alpha * emitter.alpha};
}

/// A direction within the cell's cone, uniform by solid angle (the height on a sphere's axis is uniform: Archimedes).
Vector3 bornDirection(const CellPlan& cell, const Vector3& emitterDirection, ParticleKey key) {
    const Vector3 axis = orientationAlong(emitterDirection).toSpace(cell.axis);
    if (cell.coneDepth == 0.0) {
        return axis;
    }
    const double cosine = 1.0 - uniform(key, Draw::ConeHeight) * cell.coneDepth;
    const double sine = std::sqrt(std::max(1.0 - cosine * cosine, 0.0));
    const auto turn = sineCosine(2.0 * std::numbers::pi * uniform(key, Draw::ConeTurn));
    return orientationAlong(axis).toSpace({cosine, sine * turn.cosine, sine * turn.sine});
}

} // namespace

Simulation::Simulation(std::uint64_t seed, EmitterPlan plan)
    : m_seed(seed)
    , m_plan(std::move(plan)) {
    m_ancestry.include(m_plan);
    restart();
}

void Simulation::restart() {
    const std::size_t count = m_plan.cells.size();
    m_source = Emitter{};
    m_source.key = showKey(m_seed);
    m_source.death = forever;
    m_source.x = m_plan.emitterPosition.x;
    m_source.y = m_plan.emitterPosition.y;
    m_topEmissions.clear();
    for (const CellPlan& cell : m_plan.cells) {
        const double begin = m_time + cell.beginTime;
        const double end = cell.duration > 0.0 ? begin + cell.duration : forever;
        m_topEmissions.emplace_back(m_source.key, cell.childSlot, begin, end, cell.parent < 0 ? cell.birthRate : 0.0,
                                    cell.birthsPerRound);
    }
    m_populations.assign(count, {});
    m_sparks.clear();
    m_currentBatch.assign(count, -1);
    m_birthCounts.assign(count, 0);
    m_emitterCount = 0;
    m_sparkCount = 0;
}

void Simulation::setPlan(EmitterPlan plan) {
    m_ancestry.include(plan);
    const bool sameShape = plan.hasSameShapeAs(m_plan);
    std::swap(m_plan, plan);
    if (!sameShape) {
        restart();
        return;
    }
    m_source.x = m_plan.emitterPosition.x;
    m_source.y = m_plan.emitterPosition.y;
    for (std::size_t i = 0; i < m_plan.cells.size(); ++i) {
        const CellPlan& cell = m_plan.cells[i];
        if (cell == plan.cells[i]) {
            continue;
        }
        // Many numbers decide births alone: a slider that is drawn through them does not begin batch after batch.
        const int batch = m_currentBatch[i];
        if (batch >= 0 && m_sparks[static_cast<std::size_t>(batch)].law() != lawOf(i)) {
            m_currentBatch[i] = -1;
        }
        if (cell.parent < 0) {
            m_topEmissions[i].setRate(cell.birthRate, m_time);
            continue;
        }
        const std::size_t siblings = m_plan.cells[static_cast<std::size_t>(cell.parent)].children.size();
        auto& emissions = m_populations[static_cast<std::size_t>(cell.parent)].emissions;
        for (auto e = static_cast<std::size_t>(cell.childSlot); e < emissions.size(); e += siblings) {
            emissions[e].setRate(cell.birthRate, m_time);
        }
    }
}

void Simulation::jumpTo(double time) {
    time = std::min(time, latestTime);
    if (!(time > m_time)) {
        return;
    }
    m_time = time;
    for (auto& emission : m_topEmissions) {
        emission.skipTo(time);
    }
    for (auto& population : m_populations) {
        population.emitters.clear();
        population.emissions.clear();
        population.firstDeath = forever;
    }
    m_sparks.clear();
    std::ranges::fill(m_currentBatch, -1);
    m_emitterCount = 0;
    m_sparkCount = 0;
}

void Simulation::advanceTo(double time) {
    time = std::min(time, latestTime);
    if (!(time > m_time)) {
        return;
    }
    jumpTo(m_ancestry.forgottenBy(time));
    m_time = time;
    const bool sweep = isSweepDue();
    if (sweep) {
        sweepSparks();
    }
    const std::uint64_t skippedBefore = m_skippedBirths;
    for (std::size_t cell = 0; cell < m_plan.cells.size(); ++cell) {
        giveBirths(cell);
    }
    if (sweep) {
        removeDeadEmitters(); // After their last births.
        m_lastSweep = m_time;
    }
    reportSkipped(skippedBefore);
}

void Simulation::giveBirths(std::size_t cell) {
    const CellPlan& plan = m_plan.cells[cell];
    if (plan.parent < 0) {
        giveBirths(cell, m_source, m_topEmissions[cell]);
        return;
    }
    const auto parent = static_cast<std::size_t>(plan.parent);
    const std::size_t siblings = m_plan.cells[parent].children.size();
    auto& population = m_populations[parent];
    for (std::size_t e = 0; e < population.emitters.size(); ++e) {
        giveBirths(cell, population.emitters[e],
                   population.emissions[e * siblings + static_cast<std::size_t>(plan.childSlot)]);
    }
}

void Simulation::giveBirths(std::size_t cell, const Emitter& emitter, Emission& emission) {
    if (!emission.hasBirthUpTo(m_time)) {
        return;
    }
    const CellPlan& plan = m_plan.cells[cell];
    const bool emits = !plan.children.empty();
    if (!emits) {
        // Sparks that are dead by now need no look at each, which a hostile rate could make endless. The margins cover
        // the rounding of ages and of this difference.
        const double lived = plan.image == nullptr ? 0.0 : plan.lifetime * 1.000001 + m_time * 1.0e-15;
        m_birthCounts[cell] += emission.skipTo(m_time - lived);
    }
    while (emission.hasBirthUpTo(m_time)) {
        if (liveCount() >= liveCeiling || (emits && m_emitterCount >= emitterCeiling)) {
            m_skippedBirths += emission.skipTo(m_time);
            return;
        }
        makeParticle(cell, emitter, emission.take());
    }
}

void Simulation::makeParticle(std::size_t cell, const Emitter& emitter, const Emission::Birth& birth) {
    const CellPlan& plan = m_plan.cells[cell];
    ++m_birthCounts[cell];
    const bool emits = !plan.children.empty();
    const bool draws = plan.image != nullptr && SparkBatch::age(birth.time, m_time) < plan.lifetime;
    if (!draws && !emits) {
        return;
    }
    const double age = birth.time - emitter.birth;
    const Vector3 heading{emitter.velocity.x, emitter.velocity.y + emitter.yAcceleration * age, emitter.velocity.z};
    const double speed = plan.velocity + plan.velocityRange * symmetric(birth.key, Draw::Velocity);
    Emitter particle;
    particle.key = birth.key;
    particle.birth = birth.time;
    particle.death = birth.time + plan.lifetime;
    particle.x = emitter.x + emitter.velocity.x * age;
    particle.y = emitter.y + emitter.velocity.y * age + 0.5 * emitter.yAcceleration * age * age;
    particle.velocity = speed * bornDirection(plan, heading, birth.key);
    particle.yAcceleration = plan.yAcceleration;
    particle.color = bornColor(plan, colorAt(emitter.color, emitter.colorSpeed, static_cast<float>(age)), birth.key);
    particle.colorSpeed = plan.colorSpeed;
    if (draws) {
        const double scale = plan.scale + plan.scaleRange * symmetric(birth.key, Draw::Scale);
        batchFor(cell).append({birth.time, static_cast<float>(particle.x), static_cast<float>(particle.y),
                               static_cast<float>(particle.velocity.x), static_cast<float>(particle.velocity.y),
                               static_cast<float>(scale), particle.color});
        ++m_sparkCount;
    }
    if (emits) {
        makeEmitter(cell, particle);
    }
}

void Simulation::makeEmitter(std::size_t cell, const Emitter& particle) {
    auto& population = m_populations[cell];
    population.emitters.push_back(particle);
    population.firstDeath = std::min(population.firstDeath, particle.death);
    for (const int child : m_plan.cells[cell].children) {
        const CellPlan& plan = m_plan.cells[static_cast<std::size_t>(child)];
        const double begin = particle.birth + plan.beginTime;
        const double end = plan.duration > 0.0 ? std::min(begin + plan.duration, particle.death) : particle.death;
        population.emissions.emplace_back(particle.key, plan.childSlot, begin, end, plan.birthRate);
    }
    ++m_emitterCount;
}

SparkLaw Simulation::lawOf(std::size_t cell) const {
    const CellPlan& plan = m_plan.cells[cell];
    return {static_cast<int>(cell), plan.lifetime, static_cast<float>(plan.yAcceleration), plan.scaleSpeed, plan.spin,
            plan.colorSpeed,        plan.image};
}

SparkBatch& Simulation::batchFor(std::size_t cell) {
    const int current = m_currentBatch[cell];
    if (current < 0 || m_sparks[static_cast<std::size_t>(current)].size() >= sparksPerBatch) {
        beginBatch(cell);
    }
    return m_sparks[static_cast<std::size_t>(m_currentBatch[cell])];
}

void Simulation::beginBatch(std::size_t cell) {
    m_currentBatch[cell] = static_cast<int>(m_sparks.size());
    ++m_batchNumber;
    if (m_emptyBatches.empty()) {
        m_sparks.emplace_back(lawOf(cell), m_batchNumber).reserve(sparksPerBatch);
        return;
    }
    m_sparks.push_back(std::move(m_emptyBatches.back()));
    m_emptyBatches.pop_back();
    m_sparks.back().reuse(lawOf(cell), m_batchNumber);
}

bool Simulation::isSweepDue() const {
    // Renderers pass over the dead cheaply, so a sweep now and then will do, unless room is short.
    constexpr double sweepInterval = 0.125;
    return m_time - m_lastSweep >= sweepInterval || liveCount() >= liveCeiling / 2 ||
           m_emitterCount >= emitterCeiling / 2;
}

void Simulation::removeDeadEmitters() {
    for (std::size_t cell = 0; cell < m_populations.size(); ++cell) {
        Population& population = m_populations[cell];
        if (population.firstDeath > m_time) {
            continue;
        }
        auto& [emitters, emissions, firstDeath] = population;
        const auto childCount = static_cast<std::ptrdiff_t>(m_plan.cells[cell].children.size());
        const std::size_t before = emitters.size();
        firstDeath = forever;
        for (std::size_t e = 0; e < emitters.size();) {
            if (emitters[e].death > m_time) {
                firstDeath = std::min(firstDeath, emitters[e].death);
                ++e;
                continue;
            }
            // The last one takes its place: nothing depends on their order.
            if (e + 1 < emitters.size()) {
                emitters[e] = emitters.back();
                std::copy_n(emissions.end() - childCount, childCount,
                            emissions.begin() + static_cast<std::ptrdiff_t>(e) * childCount);
            }
            emitters.pop_back();
            emissions.erase(emissions.end() - childCount, emissions.end());
        }
        m_emitterCount -= before - emitters.size();
    }
}

void Simulation::sweepSparks() {
    m_sparkCount = 0;
    std::size_t kept = 0;
    for (std::size_t b = 0; b < m_sparks.size(); ++b) {
        m_sparks[b].sweep(m_time);
        const auto cell = std::ranges::find(m_currentBatch, static_cast<int>(b));
        if (m_sparks[b].size() == 0 && cell == m_currentBatch.end()) {
            continue;
        }
        if (cell != m_currentBatch.end()) {
            *cell = static_cast<int>(kept);
        }
        if (kept != b) {
            std::swap(m_sparks[kept], m_sparks[b]);
        }
        m_sparkCount += m_sparks[kept].size();
        ++kept;
    }
    // As many begin as end while a show goes on, so a few that wait keep it from asking for memory; a flood's do not.
    const std::size_t mostEmpty = 2 + kept / 4;
    while (m_sparks.size() > kept) {
        if (m_emptyBatches.size() < mostEmpty) {
            m_emptyBatches.push_back(std::move(m_sparks.back()));
        }
        m_sparks.pop_back();
    }
    while (m_emptyBatches.size() > mostEmpty) {
        m_emptyBatches.pop_back();
    }
}

std::size_t Simulation::liveCount() const {
    return m_emitterCount + m_sparkCount;
}

void Simulation::reportSkipped(std::uint64_t before) {
    // Told when it begins, and again whenever the number has doubled: a hostile show must not flood the log.
    if (m_skippedBirths == before || m_skippedBirths < m_nextReport) {
        return;
    }
    m_nextReport = 2 * m_skippedBirths;
    log(LogLevel::Warning, "engine",
        "too many particles at once; births left out so far: " + std::to_string(m_skippedBirths));
}

} // namespace starbloom
