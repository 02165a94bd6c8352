// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/SparkBatch.h"

#include <algorithm>

namespace starbloom {

void SparkBatch::append(const SparkBirth& birth) {
    time.push_back(birth.time);
    x.push_back(birth.x);
    y.push_back(birth.y);
    velocityX.push_back(birth.velocityX);
    velocityY.push_back(birth.velocityY);
    scale.push_back(birth.scale);
    red.push_back(birth.color.red);
    green.push_back(birth.color.green);
    blue.push_back(birth.color.blue);
    alpha.push_back(birth.color.alpha);
    m_firstBirth = std::min(m_firstBirth, birth.time);
    m_lastBirth = std::max(m_lastBirth, birth.time);
}

void SparkBatch::reserve(std::size_t count) {
    time.reserve(count);
    for (auto* column : {&x, &y, &velocityX, &velocityY, &scale, &red, &green, &blue, &alpha}) {
        column->reserve(count);
    }
}

void SparkBatch::sweep(double now) {
    if (age(m_firstBirth, now) < m_law.lifetime) {
        return;
    }
    if (age(m_lastBirth, now) >= m_law.lifetime) {
        resize(0);
        forgetBirths();
        return;
    }
    // Sparks die in about the order of their births, so those that live stand together and move together.
    const std::size_t count = size();
    std::size_t kept = 0;
    double firstBirth = m_lastBirth;
    for (std::size_t i = 0; i < count;) {
        for (; i < count && age(time[i], now) >= m_law.lifetime; ++i) {
        }
        const std::size_t first = i;
        for (; i < count && age(time[i], now) < m_law.lifetime; ++i) {
            firstBirth = std::min(firstBirth, time[i]);
        }
        moveRun(first, i, kept);
        kept += i - first;
    }
    resize(kept);
    m_firstBirth = firstBirth;
}

void SparkBatch::reuse(SparkLaw law, std::uint64_t number) {
    resize(0);
    forgetBirths();
    m_law = std::move(law);
    m_number = number;
}

void SparkBatch::resize(std::size_t count) {
    time.resize(count);
    for (auto* column : {&x, &y, &velocityX, &velocityY, &scale, &red, &green, &blue, &alpha}) {
        column->resize(count);
    }
}

void SparkBatch::moveRun(std::size_t first, std::size_t end, std::size_t to) {
    if (first == to) {
        return;
    }
    const auto move = [=](auto& column) { std::copy(column.data() + first, column.data() + end, column.data() + to); };
    move(time);
    for (auto* column : {&x, &y, &velocityX, &velocityY, &scale, &red, &green, &blue, &alpha}) {
        move(*column);
    }
}

void SparkBatch::forgetBirths() {
    m_firstBirth = std::numeric_limits<double>::infinity();
    m_lastBirth = -std::numeric_limits<double>::infinity();
}

std::optional<SparkState> SparkBatch::stateAt(std::size_t i, double now) const {
    const float a = age(time[i], now);
    if (!(a >= 0.0F && a < m_law.lifetime)) {
        return std::nullopt;
    }
    const auto channel = [a](float value, float speed) { return std::clamp(value + speed * a, 0.0F, 1.0F); };
    const Color& speed = m_law.colorSpeed;
    SparkState state;
    state.age = a;
    state.x = x[i] + velocityX[i] * a;
    state.y = (y[i] + velocityY[i] * a) + (0.5F * m_law.yAcceleration * a) * a;
    state.scale = std::max(scale[i] + m_law.scaleSpeed * a, 0.0F);
    state.rotation = m_law.spin * a;
    state.color = {channel(red[i], speed.red), channel(green[i], speed.green), channel(blue[i], speed.blue),
                   channel(alpha[i], speed.alpha)};
    return state;
}

} // namespace starbloom
