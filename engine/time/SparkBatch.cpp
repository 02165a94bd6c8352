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
}

void SparkBatch::sweep(double now) {
    const std::size_t count = size();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (age(time[i], now) >= m_law.lifetime) {
            continue;
        }
        if (kept != i) {
            time[kept] = time[i];
            for (auto* column : {&x, &y, &velocityX, &velocityY, &scale, &red, &green, &blue, &alpha}) {
                (*column)[kept] = (*column)[i];
            }
        }
        ++kept;
    }
    time.resize(kept);
    for (auto* column : {&x, &y, &velocityX, &velocityY, &scale, &red, &green, &blue, &alpha}) {
        column->resize(kept);
    }
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
