// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/picturesize/PictureSize.h"

#include "shell/picturesize/PictureFile.h"

#include <algorithm>
#include <string_view>

namespace starbloom {

namespace {

using namespace std::string_view_literals;

PixelSize claimedSize(const PictureFile& file) {
    const std::string_view head = file.head();
    const auto begins = [head](std::string_view mark) { return head.starts_with(mark); };
    if (begins("\x89PNG\r\n\x1a\n"sv)) {
        return toolkitSize(file, "png");
    }
    if (begins("\xff\xd8\xff"sv)) {
        return toolkitSize(file, "jpeg");
    }
    if (begins("GIF87a"sv) || begins("GIF89a"sv)) {
        return gifSize(file);
    }
    // The second pair of marks is of the variant with 64-bit offsets.
    if (begins("II*\0"sv) || begins("MM\0*"sv) || begins("II+\0"sv) || begins("MM\0+"sv)) {
        return tiffSize(file);
    }
    if (begins("\0\0\0\x0cjP  \r\n\x87\n"sv)) {
        return jpeg2000Size(file, false);
    }
    if (begins("\xff\x4f\xff\x51"sv)) {
        return jpeg2000Size(file, true);
    }
    if (begins("8BPS"sv)) {
        return psdSize(file);
    }
    if (begins("BM"sv)) {
        return toolkitSize(file, "bmp");
    }
    return head.find("%PDF-"sv) != std::string_view::npos ? pdfSize(file) : PixelSize{};
}

} // namespace

void PixelSize::cover(const PixelSize& other) {
    width = std::max(width, other.width);
    height = std::max(height, other.height);
}

PixelSize pictureSize(const PictureFile& file) {
    const PixelSize size = claimedSize(file);
    const auto sane = [](std::int64_t side) { return side > 0 && side <= longestSide; };
    return sane(size.width) && sane(size.height) ? size : PixelSize{};
}

} // namespace starbloom
