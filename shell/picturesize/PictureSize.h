// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace starbloom {

class PictureFile;

/// Width and height in pixels, 0 by 0 for what is no picture.
struct PixelSize {
    std::int64_t width = 0;
    std::int64_t height = 0;

    /// Makes it as large, in either direction, as another picture of the same file.
    void cover(const PixelSize& other);
};

/// No picture has longer sides; one that claims to is not believed.
inline constexpr std::int64_t longestSide = 1'000'000;

/// How many pictures of a file are looked at. Real files with more are rare; hostile ones would have millions.
inline constexpr int mostRepresentations = 64;

/// The size of the picture in a file of type BMP, GIF, JPEG, JPEG 2000, PDF, PNG, PSD or TIFF. Of several, such as
/// pages, the largest width and the largest height.
///
/// What the file holds decides, not its name. The size is what the headers say: nothing is decoded, so a picture may be
/// cut off behind them, or damaged, and still have one. Pages of a document count one pixel to the point.
///
/// Hostile files may make it take long, need much memory, or crash in a library: it belongs into a process that can
/// bear that.
PixelSize pictureSize(const PictureFile& file);

// The same for a single type. The file must be of that type by its first bytes.
PixelSize gifSize(const PictureFile& file);
PixelSize psdSize(const PictureFile& file);
PixelSize toolkitSize(const PictureFile& file, const char* format); ///< A format that the toolkit reads.
PixelSize tiffSize(const PictureFile& file);
PixelSize jpeg2000Size(const PictureFile& file, bool bare); ///< Bare: a code stream without boxes around it.
PixelSize pdfSize(const PictureFile& file);

} // namespace starbloom
