// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/MemoryNeeds.h"

#include "export/movie/MemoryCheck.h"

#include <string>

namespace starbloom {

namespace {

/// What a picture takes for each pixel, itself included, while it is being encoded. Measured on shows of 4000 x 4000
/// pixels: JPEG 2000 takes 32 bytes with transparency, GIF and BMP 9, the others 6.
std::uint64_t bytesWhileEncoding(PictureFormat format) {
    return format == PictureFormat::Jpeg2000 ? 40 : 12;
}

} // namespace

Result<void> checkMemory(const Options& options, int threads) {
    const auto pixels = static_cast<std::uint64_t>(options.width) * static_cast<std::uint64_t>(options.height);
    const auto inFlight = static_cast<std::uint64_t>(threads + 2);
    std::uint64_t perPixel = bytesWhileEncoding(options.format);
    if (options.kind == OutputKind::Movie || options.kind == OutputKind::Clip) {
        // Frames on their way, and what an encoder keeps back: about a hundred frames of one and a half bytes.
        perPixel = 4 * inFlight + 150;
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
