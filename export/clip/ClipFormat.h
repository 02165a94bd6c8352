// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>

namespace starbloom {

// What kinds of clips there are. Pure values and functions; any thread may use them.

/// A moving picture for other programs to go on with, in the order of clipFormats.
enum class ClipFormat {
    ProRes, ///< ProRes 4444 in a QuickTime file, for editing.
    Vp9,    ///< VP9 in WebM, for browsers.
    WebP,   ///< Animated WebP.
    Apng,   ///< Animated PNG, lossless.
    Gif,    ///< 256 colours a frame, whole hundredths of a second, no alpha.
    Rgba,   ///< Pixels and nothing else, four bytes each, for another program to read.
    Y4m,    ///< YUV4MPEG2, 4:2:0, no alpha, for encoders.
};

/// What a kind of clip can do.
struct ClipTraits {
    ClipFormat format;
    std::string_view name;      ///< As a message calls it: "APNG".
    std::string_view extension; ///< With its dot, lower case.
    bool hasAlpha;
    bool hasPremultiplied; ///< Some formats have straight alpha by definition.
    bool hasQuality;
    bool canStream;  ///< Whether it can be written to a pipe.
    int largestSide; ///< Pixels.
};

inline constexpr std::array<ClipTraits, 7> clipFormats{{
    {ClipFormat::ProRes, "ProRes 4444", ".mov", true, true, false, false, 16384},
    {ClipFormat::Vp9, "WebM", ".webm", true, true, true, false, 16384},
    {ClipFormat::WebP, "WebP", ".webp", true, false, true, false, 16383},
    {ClipFormat::Apng, "APNG", ".apng", true, false, false, false, 65535},
    {ClipFormat::Gif, "GIF", ".gif", false, false, false, false, 65535},
    {ClipFormat::Rgba, "raw RGBA", ".rgba", true, true, false, true, 65535},
    {ClipFormat::Y4m, "Y4M", ".y4m", false, false, false, true, 65535},
}};

constexpr const ClipTraits& traitsOf(ClipFormat format) {
    return clipFormats[static_cast<std::size_t>(format)];
}

/// By the extension, in any case.
std::optional<ClipFormat> clipFormatOf(const std::filesystem::path& path);

} // namespace starbloom
