// SPDX-License-Identifier: GPL-3.0-or-later

// This file is compiled once for each instruction set that Highway supports on the target, by including itself.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/raster/RasterKernels.cpp"
#include <hwy/foreach_target.h>

#include "engine/raster/RasterKernels.h"

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstring>

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

template <class D, class V = hn::Vec<D>>
HWY_INLINE void storeSizeStep(D d, V size, std::int32_t* out) {
    const hn::RebindToSigned<D> di;
    const auto fine = hn::ConvertTo(di, hn::Add(hn::Mul(size, hn::Set(d, 8.0F)), hn::Set(d, 0.5F)));
    const auto bits = hn::BitCast(di, hn::Min(size, hn::Set(d, SpriteSizes::largest)));
    const auto coarse = hn::Add(hn::ShiftRight<17>(hn::Add(bits, hn::Set(di, 1 << 16))),
                                hn::Set(di, SpriteSizes::fineSteps - SpriteSizes::firstOctaveBits));
    const auto isFine = hn::RebindMask(di, hn::Lt(size, hn::Set(d, 16.0F)));
    hn::StoreU(hn::IfThenElse(isFine, fine, coarse), di, out);
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
        storeSizeStep(d, hn::Mul(scale, hn::Set(d, s.imageSizePixels)), out.sizeStep.data() + k);
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
            out.sizeStep[whole + k] = rest.sizeStep[k];
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

/// Lanes of zeros, of ones, and of zeros again: a vector loaded from here is a mask of some lanes.
constexpr auto laneMasks = [] {
    std::array<std::int16_t, 3 * spriteLanes> lanes{};
    std::fill_n(lanes.begin() + spriteLanes, spriteLanes, std::int16_t{-1});
    return lanes;
}();

template <class D>
HWY_INLINE hn::Vec<D> firstLanes(D d, int count) {
    return hn::LoadU(d, laneMasks.data() + 2 * spriteLanes - count);
}

template <class D>
HWY_INLINE hn::Vec<D> lanesFrom(D d, int first) {
    return hn::LoadU(d, laneMasks.data() + spriteLanes - first);
}

/// Adds one sprite whose pixels lie in `count` vectors of the light, which begin at `out`, `before` lanes left of its
/// first pixel; `vectors` is their number where the compiler is to know it, or 0.
template <int vectors, class D>
HWY_INLINE void drawVectors(D d, const SparkCommand& command, std::uint16_t* out, std::ptrdiff_t planeStride,
                            int before, int count) {
    const int lanes = static_cast<int>(hn::Lanes(d));
    const int last = (vectors != 0 ? vectors - 1 : count - 1) * lanes;
    const auto inFirst = lanesFrom(d, before);
    const auto inLast = firstLanes(d, before + command.width - last);
    const auto red = hn::Set(d, command.red);
    const auto green = hn::Set(d, command.green);
    const auto blue = hn::Set(d, command.blue);
    const std::int16_t* mask = command.mask - before;
    const std::ptrdiff_t stride = command.stride;
    for (int row = command.rows; row > 0; --row) {
        for (int x = 0; x <= last; x += lanes) {
            auto m = hn::LoadU(d, mask + x);
            if (x == 0) {
                m = hn::And(m, inFirst);
            }
            if (x == last) {
                m = hn::And(m, inLast);
            }
            addTinted(d, m, red, out + x);
            addTinted(d, m, green, out + planeStride + x);
            addTinted(d, m, blue, out + 2 * planeStride + x);
        }
        mask += stride;
        out += 3 * planeStride;
    }
}

/// Has the mask of a sprite fetched that is drawn soon; what is beyond the first rows the processor foresees by itself.
HWY_INLINE void prefetchMask(const SparkCommand& command) {
    constexpr int line = 64 / static_cast<int>(sizeof(std::int16_t));
    const int pixels = std::min(command.rows * command.stride, 4 * line);
    for (int i = 0; i < pixels; i += line) {
        hwy::Prefetch(command.mask + i);
    }
}

HWY_INLINE void drawSprite(const SparkCommand& command, std::uint16_t* light, std::ptrdiff_t planeStride) {
    // No wider than a usual sprite: wider vectors would work on nothing.
    const hn::CappedTag<std::int16_t, spriteLanes> d;
    const int lanes = static_cast<int>(hn::Lanes(d));
    std::uint16_t* out = light + command.place;
    if (command.width <= lanes) {
        drawVectors<1>(d, command, out, planeStride, 0, 1);
        return;
    }
    // Adding to vectors that straddle cache lines takes almost twice as long. Two vectors in place of one would not
    // pay.
    const int before = command.place & (lanes - 1);
    out -= before;
    const int count = (before + command.width + lanes - 1) / lanes;
    switch (count) {
    case 2:
        drawVectors<2>(d, command, out, planeStride, before, count);
        break;
    case 3:
        drawVectors<3>(d, command, out, planeStride, before, count);
        break;
    case 4:
        drawVectors<4>(d, command, out, planeStride, before, count);
        break;
    default:
        drawVectors<0>(d, command, out, planeStride, before, count);
    }
}

HWY_ATTR void Draw(std::span<const SparkCommand> commands, std::uint16_t* light, std::ptrdiff_t planeStride) {
    constexpr std::size_t ahead = 3;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        if (i + ahead < commands.size()) {
            prefetchMask(commands[i + ahead]);
        }
        drawSprite(commands[i], light, planeStride);
    }
}

/// The light of one channel as display levels.
template <class D>
HWY_INLINE hn::Vec<D> levels(D d, const std::uint16_t* light, hn::Vec<D> background) {
    const auto sum = hn::SaturatedAdd(hn::LoadU(d, light), background);
    return hn::Min(hn::ShiftRight<lightShift>(sum), hn::Set(d, std::uint16_t{255}));
}

/// As many pixels as a cache line holds, in halves.
using PixelLine = std::array<std::uint16_t, 2 * linePixels>;

/// Writes a cache line past the caches. The memory is mostly the screen's, whose server has it in its own, and fetching
/// what is overwritten as a whole would take longer than working it out. Others may see it late, see
/// RasterKernels::resolve.
template <class D>
HWY_INLINE void streamLine(D d, const PixelLine& line, std::uint16_t* out) {
    for (std::size_t i = 0; i < line.size(); i += hn::Lanes(d)) {
        hn::Stream(hn::Load(d, line.data() + i), d, out + i);
    }
}

/// Writes the pixels of one row, and takes its light back to zero. `fill` works out those of a line of light, `clear`
/// does the rest.
template <class D, class Fill, class Clear>
HWY_INLINE void resolveRow(D d, std::uint16_t* light, std::ptrdiff_t width, std::uint8_t* pixels, const Fill& fill,
                           const Clear& clear) {
    HWY_ALIGN PixelLine line;
    auto* const out = reinterpret_cast<std::uint16_t*>(pixels);
    const auto fillPart = [&](std::ptrdiff_t first, std::ptrdiff_t count) HWY_ATTR {
        fill(light + first, line.data());
        std::memcpy(out + 2 * first, line.data(), static_cast<std::size_t>(count) * 4);
    };
    const auto toNextLine = (0 - reinterpret_cast<std::uintptr_t>(pixels)) % sizeof(PixelLine) / 4;
    std::ptrdiff_t x = std::min(static_cast<std::ptrdiff_t>(toNextLine), width);
    if (x > 0) {
        fillPart(0, x);
    }
    for (; x + linePixels <= width; x += linePixels) {
        fill(light + x, line.data());
        clear(light + x);
        streamLine(d, line, out + 2 * x);
    }
    if (x < width) {
        fillPart(x, width - x);
    }
    // Both parts, but no light of the next block.
    clear(light);
    clear(light + std::max(width - linePixels, std::ptrdiff_t{0}));
}

HWY_ATTR void Resolve(const LightBlock& block, const ResolveSettings& settings, std::uint8_t* pixels,
                      std::size_t bytesPerRow) {
    const hn::CappedTag<std::uint16_t, linePixels> d;
    const int lanes = static_cast<int>(hn::Lanes(d));
    // The channel that comes first in memory and the one that comes third.
    const bool swapped = settings.order == PixelOrder::Bgra;
    const std::ptrdiff_t secondPlane = block.planeStride;
    const std::ptrdiff_t firstPlane = swapped ? 2 * secondPlane : 0;
    const std::ptrdiff_t thirdPlane = 2 * secondPlane - firstPlane;
    const auto firstGround = hn::Set(d, settings.background[swapped ? 2 : 0]);
    const auto green = hn::Set(d, settings.background[1]);
    const auto thirdGround = hn::Set(d, settings.background[swapped ? 0 : 2]);
    const auto opaque = hn::Set(d, std::uint16_t{0xFF00});
    const auto fill = [&](const std::uint16_t* light, std::uint16_t* out) HWY_ATTR {
        for (int i = 0; i < linePixels; i += lanes) {
            const auto first = levels(d, light + firstPlane + i, firstGround);
            const auto second = levels(d, light + secondPlane + i, green);
            const auto third = levels(d, light + thirdPlane + i, thirdGround);
            hn::StoreInterleaved2(hn::Or(first, hn::ShiftLeft<8>(second)), hn::Or(third, opaque), d, out + 2 * i);
        }
    };
    const auto clear = [&](std::uint16_t* light) HWY_ATTR {
        for (int i = 0; i < linePixels; i += lanes) {
            for (int channel = 0; channel < 3; ++channel) {
                hn::StoreU(hn::Zero(d), d, light + channel * secondPlane + i);
            }
        }
    };
    const int width = block.width; // The stores could be to the block, for all that the compiler knows.
    std::uint16_t* light = block.light;
    for (int row = 0; row < block.rows; ++row) {
        resolveRow(d, light, width, pixels, fill, clear);
        light += 3 * secondPlane;
        pixels += bytesPerRow;
    }
}

} // namespace starbloom::HWY_NAMESPACE

HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace starbloom {

namespace {

HWY_EXPORT(Place);
HWY_EXPORT(Draw);
HWY_EXPORT(Resolve);

void place(const SparkBatch& batch, std::size_t first, std::size_t count, const PlaceSettings& settings,
           PlacedSparks& out) {
    HWY_DYNAMIC_DISPATCH(Place)(batch, first, count, settings, out);
}

void draw(std::span<const SparkCommand> commands, std::uint16_t* light, std::ptrdiff_t planeStride) {
    HWY_DYNAMIC_DISPATCH(Draw)(commands, light, planeStride);
}

void resolve(const LightBlock& block, const ResolveSettings& settings, std::uint8_t* pixels, std::size_t bytesPerRow) {
    HWY_DYNAMIC_DISPATCH(Resolve)(block, settings, pixels, bytesPerRow);
}

} // namespace

const RasterKernels& vectorKernels() {
    static constexpr RasterKernels kernels{place, draw, resolve};
    return kernels;
}

} // namespace starbloom

#endif // HWY_ONCE
