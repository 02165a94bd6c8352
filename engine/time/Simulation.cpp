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
        m_currentBatch[i] = -1;
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
    sweepSparks();
    const std::uint64_t skippedBefore = m_skippedBirths;
    for (std::size_t cell = 0; cell < m_plan.cells.size(); ++cell) {
        giveBirths(cell);
    }
    removeDeadEmitters();
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
    for (const int child : m_plan.cells[cell].children) {
        const CellPlan& plan = m_plan.cells[static_cast<std::size_t>(child)];
        const double begin = particle.birth + plan.beginTime;
        const double end = plan.duration > 0.0 ? std::min(begin + plan.duration, particle.death) : particle.death;
        population.emissions.emplace_back(particle.key, plan.childSlot, begin, end, plan.birthRate);
    }
    ++m_emitterCount;
}

SparkBatch& Simulation::batchFor(std::size_t cell) {
    if (m_currentBatch[cell] < 0) {
        const CellPlan& plan = m_plan.cells[cell];
        m_currentBatch[cell] = static_cast<int>(m_sparks.size());
        m_sparks.emplace_back(SparkLaw{static_cast<int>(cell), plan.lifetime, static_cast<float>(plan.yAcceleration),
                                       plan.scaleSpeed, plan.spin, plan.colorSpeed, plan.image},
                              ++m_batchNumber);
    }
    return m_sparks[static_cast<std::size_t>(m_currentBatch[cell])];
}

void Simulation::removeDeadEmitters() {
    m_emitterCount = 0;
    for (std::size_t cell = 0; cell < m_populations.size(); ++cell) {
        auto& [emitters, emissions] = m_populations[cell];
        const std::size_t children = m_plan.cells[cell].children.size();
        std::size_t kept = 0;
        for (std::size_t e = 0; e < emitters.size(); ++e) {
            if (emitters[e].death <= m_time) {
                continue;
            }
            if (kept != e) {
                emitters[kept] = emitters[e];
                std::copy_n(emissions.begin() + static_cast<std::ptrdiff_t>(e * children), children,
                            emissions.begin() + static_cast<std::ptrdiff_t>(kept * children));
            }
            ++kept;
        }
        emitters.erase(emitters.begin() + static_cast<std::ptrdiff_t>(kept), emitters.end());
        emissions.erase(emissions.begin() + static_cast<std::ptrdiff_t>(kept * children), emissions.end());
        m_emitterCount += kept;
    }
}

void Simulation::sweepSparks() {
    // Renderers pass over the dead cheaply, so a sweep now and then will do, unless room is short.
    constexpr double sweepInterval = 0.125;
    if (m_time - m_lastSweep < sweepInterval && liveCount() < liveCeiling / 2) {
        return;
    }
    m_lastSweep = m_time;
    m_sparkCount = 0;
    std::vector<int> newPlace(m_sparks.size(), -1);
    std::size_t kept = 0;
    for (std::size_t b = 0; b < m_sparks.size(); ++b) {
        m_sparks[b].sweep(m_time);
        if (m_sparks[b].size() == 0 && std::ranges::find(m_currentBatch, static_cast<int>(b)) == m_currentBatch.end()) {
            continue;
        }
        newPlace[b] = static_cast<int>(kept);
        if (kept != b) {
            m_sparks[kept] = std::move(m_sparks[b]);
        }
        m_sparkCount += m_sparks[kept].size();
        ++kept;
    }
    m_sparks.erase(m_sparks.begin() + static_cast<std::ptrdiff_t>(kept), m_sparks.end());
    for (int& batch : m_currentBatch) {
        batch = batch < 0 ? -1 : newPlace[static_cast<std::size_t>(batch)];
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
