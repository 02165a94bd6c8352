// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace starbloom {

/// The kinds of picture in the order of the pop-up menu, whose index is what is stored.
enum class PictureFormat : std::size_t { Bmp, Gif, Jpeg, Jpeg2000, Png, Tiff };

struct PictureFormatRow {
    PictureFormat format;
    std::string_view title;     ///< In the pop-up menu.
    std::string_view extension; ///< Without the dot.
    int typeCode;               ///< Always the index + 1.
    bool hasQuality;
    bool hasTransparency;
};

inline constexpr std::array<PictureFormatRow, 6> pictureFormats{{
    {PictureFormat::Bmp, "BMP (.bmp)", "bmp", 1, false, false},
    {PictureFormat::Gif, "GIF (.gif)", "gif", 2, false, false},
    {PictureFormat::Jpeg, "JPEG (.jpg)", "jpg", 3, true, false},
    {PictureFormat::Jpeg2000, "JPEG 2000 (.jp2)", "jp2", 4, true, true},
    {PictureFormat::Png, "PNG (.png)", "png", 5, false, true},
    {PictureFormat::Tiff, "TIFF (.tif)", "tif", 6, false, true},
}};

constexpr const PictureFormatRow& row(PictureFormat format) {
    return pictureFormats[static_cast<std::size_t>(format)];
}

/// The twenty entries of the compression pop-up menu.
inline constexpr std::array<std::string_view, 20> compressionTitles{
    "100%", "95%", "90%", "85%", "80%", "75%", "70%", "65%", "60%", "55%",
    "50%",  "45%", "40%", "35%", "30%", "25%", "20%", "15%", "10%", "5%",
};

/// The quality of an entry, from 1.0 for the first down to 0.05; an index beyond either end counts as that end. A
/// division, because repeated subtraction of 0.05 drifts.
constexpr double qualityOfIndex(int index) {
    return (20 - std::clamp(index, 0, 19)) / 20.0;
}

} // namespace starbloom
