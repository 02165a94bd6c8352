// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/time/SparkBatch.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

class QOpenGLExtraFunctions;

namespace starbloom {

/// A spark's birth as the vertex shader reads it. The moment comes in two parts, as a float alone would be too coarse
/// for a show of some hours.
struct SparkRecord {
    float timeHigh;
    float timeLow;
    float x, y;
    float velocityX, velocityY;
    float scale;
    float red, green, blue, alpha;

    static SparkRecord of(const SparkBatch& batch, std::size_t index);
};

/// The two parts of a moment.
struct SplitTime {
    float high;
    float low;

    explicit SplitTime(double time)
        : high(static_cast<float>(time))
        , low(static_cast<float>(time - static_cast<double>(high))) {}
};

/// The births of one batch in the graphics memory: a ring that grows. Each birth is sent once; the dead are left behind
/// by moving the start, and the shader passes over those that died out of turn.
///
/// Its context is current whenever a method is called that takes the functions.
class SparkRing {
public:
    /// Consecutive records in the buffer.
    struct Piece {
        std::size_t first;
        std::size_t count;
    };

    /// Sends the births that are new since the last call, and forgets the dead. The answer is how many bytes were sent.
    std::size_t follow(QOpenGLExtraFunctions& gl, const SparkBatch& batch, double time);

    /// What may be alive, in one piece or two.
    std::vector<Piece> pieces() const;

    unsigned buffer() const { return m_buffer; }

    void release(QOpenGLExtraFunctions& gl);

private:
    /// What one call has sent.
    struct Sending {
        std::uint64_t end;  ///< The count of records up to and with it.
        double newestBirth; ///< When its last one was born.
    };

    void forgetDead(const SparkBatch& batch, double time);
    void makeRoom(QOpenGLExtraFunctions& gl, std::size_t more);
    void send(QOpenGLExtraFunctions& gl, std::span<const SparkRecord> records);
    std::vector<Piece> piecesOf(std::uint64_t begin, std::uint64_t end) const;

    unsigned m_buffer = 0;
    std::size_t m_capacity = 0; ///< Records, a power of two.
    // Counts of records, of which the remainder by the capacity is the place.
    std::uint64_t m_begin = 0;
    std::uint64_t m_end = 0;
    std::deque<Sending> m_sendings; ///< From m_begin on.
    double m_newestBirth = -1.0;    ///< Of all that were sent. Whatever is born later comes later.
};

} // namespace starbloom
