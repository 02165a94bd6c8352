// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "engine/raster/RasterRenderer.h"
#include "engine/time/Show.h"
#include "tests/engine/Scenes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

namespace starbloom {

/// Some frames of the show at its brightest, 30 a second, drawn smaller or larger to fit the width.
inline std::vector<ImageBuffer> showFrames(int width, int height, int count,
                                           const Color& background = {0.0F, 0.0F, 0.0F, 1.0F}) {
    ShowPlayer player({1, {{0.0, panelPlan()}}});
    RasterRenderer renderer;
    std::vector<ImageBuffer> frames;
    for (int i = 0; i < count; ++i) {
        const double moment = 4.0 + i / 30.0;
        ImageBuffer& frame = frames.emplace_back(width, height);
        renderer.render(player.at(moment).sparks(), {moment, width / 640.0, background}, RasterTarget::of(frame));
    }
    return frames;
}

inline std::string bytesOf(std::span<const ImageBuffer> frames) {
    std::string bytes;
    for (const ImageBuffer& frame : frames) {
        bytes.append(reinterpret_cast<const char*>(frame.bytes().data()), frame.bytes().size());
    }
    return bytes;
}

/// How alike two series of bytes are, in decibels; 100 when they are the same.
inline double psnr(const std::string& one, const std::string& other) {
    if (one.size() != other.size() || one.empty()) {
        return 0.0;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        const double difference = static_cast<std::uint8_t>(one[i]) - static_cast<std::uint8_t>(other[i]);
        sum += difference * difference;
    }
    return sum > 0.0 ? 10.0 * std::log10(255.0 * 255.0 * static_cast<double>(one.size()) / sum) : 100.0;
}

inline int largestDifference(const std::string& one, const std::string& other) {
    int largest = one.size() == other.size() ? 0 : 256;
    for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
        largest = std::max(largest, std::abs(static_cast<std::uint8_t>(one[i]) - static_cast<std::uint8_t>(other[i])));
    }
    return largest;
}

} // namespace starbloom
