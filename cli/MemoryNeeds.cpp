// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MemoryNeeds.h"

#include "export/movie/MemoryCheck.h"

#include <algorithm>
#include <string>

namespace starbloom {

namespace {

/// What a picture takes for each pixel, itself included, while it is being encoded. Measured on shows of 4000 x 4000
/// pixels: JPEG 2000 takes 32 bytes with transparency, GIF and BMP 9, the others 6.
std::uint64_t bytesWhileEncoding(PictureFormat format) {
    return format == PictureFormat::Jpeg2000 ? 40 : 12;
}

/// What an encoder of moving pictures keeps, in bytes for each pixel of the picture.
struct EncoderMemory {
    std::uint64_t always;
    std::uint64_t perThread;        ///< Frames that wait for each other, to be encoded together.
    std::uint64_t perEncoderThread; ///< Threads of the encoder's own, of which it takes sixteen at most.
};

/// Measured at 1280x720 with 1, 8 and 32 threads, 70 frames of the show, the highest seen and a little more.
EncoderMemory encoderMemory(const Options& options) {
    if (options.kind == OutputKind::Movie) {
        return {120, 0, 17};
    }
    switch (options.clipFormat) {
    case ClipFormat::ProRes:
        return {24, 0, 2};
    case ClipFormat::Vp9: // Alpha has an encoder of its own.
        return options.transparent ? EncoderMemory{332, 0, 18} : EncoderMemory{166, 0, 9};
    case ClipFormat::WebP:
        return {22, 7, 0};
    case ClipFormat::Apng:
        return {10, 7, 0};
    case ClipFormat::Gif:
        return {30, 13, 0};
    default: // What is raw is not kept.
        return {10, 1, 0};
    }
}

} // namespace

Result<void> checkMemory(const Options& options, int threads) {
    const auto pixels = static_cast<std::uint64_t>(options.width) * static_cast<std::uint64_t>(options.height);
    const auto inFlight = static_cast<std::uint64_t>(threads + 2);
    std::uint64_t perPixel = bytesWhileEncoding(options.format);
    if (options.kind == OutputKind::Movie || options.kind == OutputKind::Clip) {
        const EncoderMemory encoder = encoderMemory(options);
        const auto count = static_cast<std::uint64_t>(threads);
        const auto encoderCount = std::min<std::uint64_t>(count, 16);
        perPixel = 4 * inFlight + encoder.always + encoder.perThread * count + encoder.perEncoderThread * encoderCount;
    } else if (options.kind == OutputKind::Frames || options.kind == OutputKind::FlashCheck) {
        perPixel *= inFlight;
    }
    perPixel += options.shutter > 0.0 ? 12 : 0;
    const auto available = availableMemory();
    const std::uint64_t needed = pixels * perPixel;
    if (!available || needed <= *available) {
        return {};
    }
    return Error{"--size: " + std::to_string(options.width) + "x" + std::to_string(options.height) + " needs about " +
                 std::to_string(needed >> 20U) + " MiB of memory, and " + std::to_string(*available >> 20U) +
                 " MiB are free"};
}

} // namespace starbloom
