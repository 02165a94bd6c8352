// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace starbloom {

// Randomness without state. Every number is a hash of what it is for: the show's seed, the chain of births that leads
// to a particle, and which of the particle's numbers is asked. So a number does not depend on what was drawn before it,
// and any moment of a show can be computed without the moments before.

/// Scrambles 64 bits so that each input bit flips each output bit with probability one half. The finaliser of
/// SplitMix64: variant 13 in D. Stafford, "Better Bit Mixing" (2011); S. Vigna, splitmix64.c (2015).
constexpr std::uint64_t scramble(std::uint64_t z) {
    z += 0x9E3779B97F4A7C15U;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31U);
}

/// Stands for one particle and its whole ancestry.
using ParticleKey = std::uint64_t;

/// The root of all keys of a show.
constexpr ParticleKey showKey(std::uint64_t seed) {
    return scramble(seed);
}

/// The key of the birth number `index` from the child cell number `cell` of the emitter particle `emitter`.
constexpr ParticleKey birthKey(ParticleKey emitter, std::uint64_t cell, std::uint64_t index) {
    return scramble(scramble(emitter ^ (cell + 1)) + index);
}

/// Which of a particle's random numbers.
enum class Draw : std::uint64_t { Moment, ConeHeight, ConeTurn, Velocity, Scale, Red, Green, Blue };

/// A number in [0, 1) with 53 random bits.
constexpr double uniform(ParticleKey key, Draw which) {
    const std::uint64_t bits = scramble(key + (static_cast<std::uint64_t>(which) << 56U));
    return static_cast<double>(bits >> 11U) * 0x1.0p-53;
}

/// A number in [-1, 1).
constexpr double symmetric(ParticleKey key, Draw which) {
    return 2.0 * uniform(key, which) - 1.0;
}

} // namespace starbloom
