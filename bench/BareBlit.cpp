// SPDX-License-Identifier: GPL-3.0-or-later
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "bench/BareBlit.cpp"
#include <hwy/foreach_target.h>

#include "bench/BareBlit.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace starbloom::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Adds `rows` rows of 48 bytes: three vectors of 16, or a vector of 32 and one of 16.
HWY_INLINE void addSprite(const std::uint8_t* sprite, int rows, std::uint8_t* out, std::size_t bytesPerRow) {
    const hn::CappedTag<std::uint8_t, 32> wide;
    const hn::CappedTag<std::uint8_t, 16> narrow;
    const std::size_t lanes = hn::Lanes(wide);
    for (int row = 0; row < rows; ++row) {
        std::size_t i = 0;
        for (; i + lanes <= 48; i += lanes) {
            hn::StoreU(hn::SaturatedAdd(hn::LoadU(wide, out + i), hn::LoadU(wide, sprite + i)), wide, out + i);
        }
        for (; i < 48; i += hn::Lanes(narrow)) {
            hn::StoreU(hn::SaturatedAdd(hn::LoadU(narrow, out + i), hn::LoadU(narrow, sprite + i)), narrow, out + i);
        }
        sprite += 48;
        out += bytesPerRow;
    }
}

/// Draws all sparks into the rows top .. bottom - 1.
HWY_ATTR void DrawRows(BareBlit::Scene& scene, float time, int top, int bottom) {
    constexpr int side = BareBlit::side;
    const std::size_t bytesPerRow = static_cast<std::size_t>(scene.width) * 4;
    for (std::size_t i = 0; i < scene.x.size(); ++i) {
        const float age = time - scene.birth[i];
        const int x = static_cast<int>(scene.x[i] + scene.velocityX[i] * age);
        const int y = static_cast<int>(scene.y[i] + scene.velocityY[i] * age + 5.0F * age * age);
        const int firstRow = y > top ? y : top;
        const int rows = (y + side < bottom ? y + side : bottom) - firstRow;
        if (rows <= 0 || x < 0 || x > scene.width - side) {
            continue;
        }
        const std::size_t colour = i & 15U;
        addSprite(scene.sprites.data() + (colour * side + static_cast<std::size_t>(firstRow - y)) * side * 4, rows,
                  scene.picture.data() + static_cast<std::size_t>(firstRow) * bytesPerRow +
                      static_cast<std::size_t>(x) * 4,
                  bytesPerRow);
    }
}

} // namespace starbloom::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include <cmath>
#include <cstring>
#include <random>

namespace starbloom {

HWY_EXPORT(DrawRows);

BareBlit::BareBlit(int width, int height, std::size_t sparks)
    : m_output(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4) {
    m_scene.width = width;
    m_scene.height = height;
    m_scene.picture.resize(m_output.size());
    std::mt19937 random(1);
    std::uniform_real_distribution<float> unit(0.0F, 1.0F);
    for (std::size_t i = 0; i < sparks; ++i) {
        m_scene.x.push_back(unit(random) * static_cast<float>(width));
        m_scene.y.push_back(unit(random) * static_cast<float>(height));
        m_scene.velocityX.push_back(unit(random) * 40.0F - 20.0F);
        m_scene.velocityY.push_back(unit(random) * 40.0F - 20.0F);
        m_scene.birth.push_back(-unit(random));
    }
    for (int pixel = 0; pixel < 16 * side * side; ++pixel) {
        const float dx = static_cast<float>(pixel % side) - 5.5F;
        const float dy = static_cast<float>(pixel / side % side) - 5.5F;
        const auto light = static_cast<std::uint8_t>(200.0F * std::exp(-(dx * dx + dy * dy) / 8.0F));
        m_scene.sprites.insert(m_scene.sprites.end(), 4, light);
    }
}

void BareBlit::drawFrame(float time, Workers& workers) {
    const std::size_t bytesPerRow = static_cast<std::size_t>(m_scene.width) * 4;
    const int parts = static_cast<int>(workers.count());
    workers.share(workers.count(), workers.count(), [&](std::size_t index, std::size_t /*worker*/) {
        const int part = static_cast<int>(index);
        const int top = m_scene.height * part / parts;
        const int bottom = m_scene.height * (part + 1) / parts;
        const std::size_t first = static_cast<std::size_t>(top) * bytesPerRow;
        const std::size_t bytes = static_cast<std::size_t>(bottom - top) * bytesPerRow;
        std::memset(m_scene.picture.data() + first, 0, bytes);
        HWY_DYNAMIC_DISPATCH(DrawRows)(m_scene, time, top, bottom);
        std::memcpy(m_output.data() + first, m_scene.picture.data() + first, bytes);
    });
}

} // namespace starbloom

#endif // HWY_ONCE
