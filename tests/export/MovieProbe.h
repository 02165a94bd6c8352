// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <string>

namespace starbloom {

inline ImageBuffer noise(int width, int height, unsigned seed) {
    std::mt19937 random(seed);
    ImageBuffer image(width, height);
    for (auto& byte : image.bytes()) {
        byte = static_cast<std::uint8_t>(random());
    }
    return image;
}

inline std::string outputOf(const std::string& command) {
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    std::array<char, 4096> part{};
    while (const std::size_t length = fread(part.data(), 1, part.size(), pipe)) {
        output.append(part.data(), length);
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

/// What an independent program says about the movie: its only stream, then the file, whose values of the same name are
/// appended after a slash.
inline std::map<std::string, std::string> probe(const std::filesystem::path& movie) {
    std::istringstream lines(outputOf(
        "ffprobe -v error -of default=nw=1 -show_entries stream:format=format_name,duration '" + movie.string() + "'"));
    std::map<std::string, std::string> entries;
    for (std::string line; std::getline(lines, line);) {
        const auto equals = std::min(line.find('='), line.size() - 1);
        std::string& value = entries[line.substr(0, equals)];
        value += value.empty() ? "" : "/";
        value += line.substr(equals + 1);
    }
    return entries;
}

/// All frames in a row, three bytes per pixel, turned back to RGB as the movie's own tags say.
inline std::string decode(const std::filesystem::path& movie) {
    return outputOf("ffmpeg -nostdin -v error -i '" + movie.string() +
                    "' -sws_flags accurate_rnd+full_chroma_int -pix_fmt rgb24 -f rawvideo -");
}

inline int sampleAt(const std::string& rgb, std::size_t index) {
    return static_cast<std::uint8_t>(rgb[index]);
}

} // namespace starbloom
