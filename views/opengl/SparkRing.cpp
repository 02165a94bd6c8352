// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/SparkRing.h"

#include <QOpenGLExtraFunctions>

#include <algorithm>
#include <bit>

namespace starbloom {

namespace {

constexpr std::size_t smallestCapacity = 256;

constexpr auto bytesOf(std::size_t records) {
    return static_cast<qopengl_GLsizeiptr>(records * sizeof(SparkRecord));
}

} // namespace

SparkRecord SparkRecord::of(const SparkBatch& batch, std::size_t i) {
    const SplitTime birth(batch.time[i]);
    return {birth.high,     birth.low,    batch.x[i],     batch.y[i],    batch.velocityX[i], batch.velocityY[i],
            batch.scale[i], batch.red[i], batch.green[i], batch.blue[i], batch.alpha[i]};
}

std::size_t SparkRing::follow(QOpenGLExtraFunctions& gl, const SparkBatch& batch, double time) {
    forgetDead(batch, time);
    // A simulation gives all births of a step before those of the next, so what is new stands at the end.
    std::size_t first = batch.size();
    while (first > 0 && batch.time[first - 1] > m_newestBirth) {
        --first;
    }
    std::vector<SparkRecord> born;
    double newest = m_newestBirth;
    for (std::size_t i = first; i < batch.size(); ++i) {
        newest = std::max(newest, batch.time[i]);
        born.push_back(SparkRecord::of(batch, i));
    }
    if (born.empty()) {
        return 0;
    }
    makeRoom(gl, born.size());
    send(gl, born);
    m_newestBirth = newest;
    m_sendings.push_back({m_end, newest});
    return static_cast<std::size_t>(bytesOf(born.size()));
}

void SparkRing::forgetDead(const SparkBatch& batch, double time) {
    while (!m_sendings.empty() && SparkBatch::age(m_sendings.front().newestBirth, time) >= batch.law().lifetime) {
        m_begin = m_sendings.front().end;
        m_sendings.pop_front();
    }
}

void SparkRing::makeRoom(QOpenGLExtraFunctions& gl, std::size_t more) {
    const auto kept = static_cast<std::size_t>(m_end - m_begin);
    if (kept + more <= m_capacity) {
        return;
    }
    const std::size_t capacity = std::bit_ceil(std::max(kept + more, smallestCapacity));
    unsigned grown = 0;
    gl.glGenBuffers(1, &grown);
    gl.glBindBuffer(GL_COPY_WRITE_BUFFER, grown);
    gl.glBufferData(GL_COPY_WRITE_BUFFER, bytesOf(capacity), nullptr, GL_DYNAMIC_DRAW);
    std::size_t place = 0;
    gl.glBindBuffer(GL_COPY_READ_BUFFER, m_buffer);
    for (const Piece& piece : pieces()) {
        gl.glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, bytesOf(piece.first), bytesOf(place),
                               bytesOf(piece.count));
        place += piece.count;
    }
    gl.glDeleteBuffers(1, &m_buffer);
    m_buffer = grown;
    m_capacity = capacity;
    for (Sending& sending : m_sendings) {
        sending.end -= m_begin;
    }
    m_end -= m_begin;
    m_begin = 0;
}

void SparkRing::send(QOpenGLExtraFunctions& gl, std::span<const SparkRecord> records) {
    gl.glBindBuffer(GL_COPY_WRITE_BUFFER, m_buffer);
    for (const Piece& piece : piecesOf(m_end, m_end + records.size())) {
        gl.glBufferSubData(GL_COPY_WRITE_BUFFER, bytesOf(piece.first), bytesOf(piece.count), records.data());
        records = records.subspan(piece.count);
        m_end += piece.count;
    }
}

std::vector<SparkRing::Piece> SparkRing::pieces() const {
    return piecesOf(m_begin, m_end);
}

std::vector<SparkRing::Piece> SparkRing::piecesOf(std::uint64_t begin, std::uint64_t end) const {
    if (begin == end) {
        return {};
    }
    const auto first = static_cast<std::size_t>(begin % m_capacity);
    const auto count = static_cast<std::size_t>(end - begin);
    const std::size_t beforeWrap = std::min(count, m_capacity - first);
    std::vector<Piece> all{{first, beforeWrap}};
    if (beforeWrap < count) {
        all.push_back({0, count - beforeWrap});
    }
    return all;
}

void SparkRing::release(QOpenGLExtraFunctions& gl) {
    gl.glDeleteBuffers(1, &m_buffer);
    m_buffer = 0;
}

} // namespace starbloom
