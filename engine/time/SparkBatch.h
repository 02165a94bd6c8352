// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "engine/model/SparkImage.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace starbloom {

/// What all sparks of a batch have in common: the numbers of their cell at the time of their births.
struct SparkLaw {
    int cell = 0;          ///< Index in the EmitterPlan.
    float lifetime = 0.0F; ///< Seconds.
    float yAcceleration = 0.0F;
    float scaleSpeed = 0.0F;
    float spin = 0.0F; ///< Radians per second.
    Color colorSpeed;  ///< Change per second of each channel.
    std::shared_ptr<const SparkImage> image;

    friend bool operator==(const SparkLaw&, const SparkLaw&) = default;
};

/// A spark at birth. Everything later follows from it and the law in closed form.
struct SparkBirth {
    double time = 0.0; ///< In the layer's own time.
    float x = 0.0F;    ///< Points from the stage's bottom left corner, y upward.
    float y = 0.0F;
    float velocityX = 0.0F;
    float velocityY = 0.0F;
    float scale = 1.0F;
    Color color; ///< Not limited to 0..1.
};

/// A spark at one moment.
struct SparkState {
    float age = 0.0F;
    float x = 0.0F;
    float y = 0.0F;
    float scale = 0.0F;    ///< 0 or more.
    float rotation = 0.0F; ///< Radians, counter-clockwise.
    Color color;           ///< Each channel within 0..1.
};

/// Drawn particles that share a law, each column in an array of its own so that renderers read them in whole vectors.
/// May hold sparks that have died since the last sweep.
class SparkBatch {
public:
    explicit SparkBatch(SparkLaw law, std::uint64_t number = 0)
        : m_law(std::move(law))
        , m_number(number) {}

    const SparkLaw& law() const { return m_law; }

    /// Tells it from all other batches that its simulation has ever had.
    std::uint64_t number() const { return m_number; }

    std::size_t size() const { return time.size(); }

    void append(const SparkBirth& birth);

    /// Makes room for so many sparks in all at once.
    void reserve(std::size_t count);

    /// Drops the sparks that are dead at that time, for good; the order of the others stays. Costs nothing while none
    /// has died, and next to nothing when all have.
    void sweep(double now);

    /// Begins anew as an empty batch of another law and number, which keeps the memory.
    void reuse(SparkLaw law, std::uint64_t number);

    /// The spark at a moment; nothing when it is not yet born or already dead.
    std::optional<SparkState> stateAt(std::size_t index, double now) const;

    /// How old a spark is, in the precision that decides whether it lives.
    static float age(double birth, double now) { return static_cast<float>(now - birth); }

    std::vector<double> time;
    std::vector<float> x, y, velocityX, velocityY, scale, red, green, blue, alpha;

private:
    void resize(std::size_t count);
    void moveRun(std::size_t first, std::size_t end, std::size_t to);
    void forgetBirths();

    SparkLaw m_law;
    std::uint64_t m_number;
    double m_firstBirth = std::numeric_limits<double>::infinity(); ///< No spark in it was born before this moment,
    double m_lastBirth = -std::numeric_limits<double>::infinity(); ///< and none after this one.
};

} // namespace starbloom
