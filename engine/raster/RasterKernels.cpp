// SPDX-License-Identifier: GPL-3.0-or-later

// This file is compiled once for each instruction set that Highway supports on the target, by including itself.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/raster/RasterKernels.cpp"
#include <hwy/foreach_target.h>

#include "engine/raster/RasterKernels.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();

namespace starbloom::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

/// Both ends of a value's range, as vectors.
template <class D, class V = hn::Vec<D>>
HWY_INLINE V between(D d, V value, float lowest, float highest) {
    return hn::Min(hn::Max(value, hn::Set(d, lowest)), hn::Set(d, highest));
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE void storeEighths(D d, V pixels, std::int32_t* out) {
    const hn::RebindToSigned<D> di;
    const V bounded = between(d, pixels, -16384.0F, 131072.0F);
    hn::StoreU(hn::ConvertTo(di, hn::Floor(hn::Add(hn::Mul(bounded, hn::Set(d, 8.0F)), hn::Set(d, 0.5F)))), di, out);
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE void storeTint(D d, const float* birth, float speed, V age, V light, std::int32_t* out) {
    const hn::RebindToSigned<D> di;
    const V channel = between(d, hn::Add(hn::LoadU(d, birth), hn::Mul(hn::Set(d, speed), age)), 0.0F, 1.0F);
    hn::StoreU(hn::ConvertTo(di, hn::Add(hn::Mul(channel, light), hn::Set(d, 0.5F))), di, out);
}

HWY_ATTR void Place(const SparkBatch& b, std::size_t first, std::size_t count, const PlaceSettings& s,
                    PlacedSparks& out) {
    const hn::ScalableTag<float> d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t whole = count - count % lanes;
    const SparkLaw& law = b.law();
    std::array<float, PlacedSparks::capacity> ages;
    for (std::size_t k = 0; k < whole; ++k) {
        ages[k] = SparkBatch::age(b.time[first + k], s.time);
    }
    const auto zero = hn::Zero(d);
    const auto zoom = hn::Set(d, s.pixelsPerPoint);
    const auto halfPull = hn::Set(d, 0.5F * law.yAcceleration);
    for (std::size_t k = 0; k < whole; k += lanes) {
        const std::size_t i = first + k;
        const auto age = hn::LoadU(d, ages.data() + k);
        const auto alive = hn::And(hn::Ge(age, zero), hn::Lt(age, hn::Set(d, law.lifetime)));
        const auto x = hn::Add(hn::LoadU(d, &b.x[i]), hn::Mul(hn::LoadU(d, &b.velocityX[i]), age));
        const auto y = hn::Add(hn::Add(hn::LoadU(d, &b.y[i]), hn::Mul(hn::LoadU(d, &b.velocityY[i]), age)),
                               hn::Mul(hn::Mul(halfPull, age), age));
        const auto scale = hn::Max(hn::Add(hn::LoadU(d, &b.scale[i]), hn::Mul(hn::Set(d, law.scaleSpeed), age)), zero);
        const auto alpha =
            between(d, hn::Add(hn::LoadU(d, &b.alpha[i]), hn::Mul(hn::Set(d, law.colorSpeed.alpha), age)), 0.0F, 1.0F);
        const auto light = hn::IfThenElseZero(alive, hn::Mul(alpha, hn::Set(d, static_cast<float>(fullLight))));
        storeEighths(d, hn::Mul(x, zoom), out.x8.data() + k);
        storeEighths(d, hn::Sub(hn::Set(d, s.pictureHeight), hn::Mul(y, zoom)), out.y8.data() + k);
        hn::StoreU(hn::Mul(scale, hn::Set(d, s.imageSizePixels)), d, out.size.data() + k);
        hn::StoreU(hn::Mul(hn::Set(d, law.spin), age), d, out.rotation.data() + k);
        storeTint(d, &b.red[i], law.colorSpeed.red, age, light, out.red.data() + k);
        storeTint(d, &b.green[i], law.colorSpeed.green, age, light, out.green.data() + k);
        storeTint(d, &b.blue[i], law.colorSpeed.blue, age, light, out.blue.data() + k);
    }
    if (whole != count) {
        PlacedSparks rest;
        const std::size_t left = count - whole;
        scalarKernels().place(b, first + whole, left, s, rest);
        for (std::size_t k = 0; k < left; ++k) {
            out.x8[whole + k] = rest.x8[k];
            out.y8[whole + k] = rest.y8[k];
            out.size[whole + k] = rest.size[k];
            out.rotation[whole + k] = rest.rotation[k];
            out.red[whole + k] = rest.red[k];
            out.green[whole + k] = rest.green[k];
            out.blue[whole + k] = rest.blue[k];
        }
    }
}

template <class D>
HWY_INLINE void addTinted(D /*lanes*/, hn::Vec<D> mask, hn::Vec<D> tint, std::uint16_t* light) {
    const hn::RebindToUnsigned<D> du;
    const auto added = hn::BitCast(du, hn::MulFixedPoint15(mask, tint));
    hn::StoreU(hn::SaturatedAdd(hn::LoadU(du, light), added), du, light);
}

HWY_ATTR void Blit(const std::int16_t* mask, int stride, int rows, const SparkCommand& command, std::uint16_t* light,
                   std::ptrdiff_t planeStride) {
    // No wider than a usual sprite: wider vectors would work on nothing and straddle cache lines.
    const hn::CappedTag<std::int16_t, SpriteSet::laneMultiple> d;
    const auto red = hn::Set(d, command.red);
    const auto green = hn::Set(d, command.green);
    const auto blue = hn::Set(d, command.blue);
    const int lanes = static_cast<int>(hn::Lanes(d));
    for (int row = 0; row < rows; ++row) {
        for (int x = 0; x < stride; x += lanes) {
            const auto m = hn::LoadU(d, mask + x);
            addTinted(d, m, red, light + x);
            addTinted(d, m, green, light + planeStride + x);
            addTinted(d, m, blue, light + 2 * planeStride + x);
        }
        mask += stride;
        light += 3 * planeStride;
    }
}

template <class D>
HWY_INLINE auto takeChannel(D d, std::uint16_t* light, std::uint16_t background) {
    const hn::Rebind<std::uint8_t, D> d8;
    const hn::RebindToSigned<D> di;
    const auto sum = hn::SaturatedAdd(hn::LoadU(d, light), hn::Set(d, background));
    hn::StoreU(hn::Zero(d), d, light);
    return hn::DemoteTo(d8, hn::BitCast(di, hn::ShiftRight<lightShift>(sum)));
}

HWY_ATTR void Resolve(std::uint16_t* light, std::ptrdiff_t planeStride, std::size_t count,
                      const ResolveSettings& settings, std::uint8_t* pixels) {
    const hn::ScalableTag<std::uint16_t> d;
    const hn::Rebind<std::uint8_t, decltype(d)> d8;
    const std::size_t lanes = hn::Lanes(d);
    const auto opaque = hn::Set(d8, std::uint8_t{255});
    std::size_t x = 0;
    for (; x + lanes <= count; x += lanes) {
        const auto red = takeChannel(d, light + x, settings.background[0]);
        const auto green = takeChannel(d, light + planeStride + x, settings.background[1]);
        const auto blue = takeChannel(d, light + 2 * planeStride + x, settings.background[2]);
        if (settings.order == PixelOrder::Rgba) {
            hn::StoreInterleaved4(red, green, blue, opaque, d8, pixels + 4 * x);
        } else {
            hn::StoreInterleaved4(blue, green, red, opaque, d8, pixels + 4 * x);
        }
    }
    if (x < count) {
        scalarKernels().resolve(light + x, planeStride, count - x, settings, pixels + 4 * x);
    }
}

} // namespace starbloom::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace starbloom {

namespace {

HWY_EXPORT(Place);
HWY_EXPORT(Blit);
HWY_EXPORT(Resolve);

void place(const SparkBatch& batch, std::size_t first, std::size_t count, const PlaceSettings& settings,
           PlacedSparks& out) {
    HWY_DYNAMIC_DISPATCH(Place)(batch, first, count, settings, out);
}

void blit(const std::int16_t* mask, int stride, int rows, const SparkCommand& tint, std::uint16_t* light,
          std::ptrdiff_t planeStride) {
    HWY_DYNAMIC_DISPATCH(Blit)(mask, stride, rows, tint, light, planeStride);
}

void resolve(std::uint16_t* light, std::ptrdiff_t planeStride, std::size_t count, const ResolveSettings& settings,
             std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(Resolve)(light, planeStride, count, settings, pixels);
}

} // namespace

const RasterKernels& vectorKernels() {
    static constexpr RasterKernels kernels{place, blit, resolve};
    return kernels;
}

} // namespace starbloom

#endif // HWY_ONCE
