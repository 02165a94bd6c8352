// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace starbloom {

/// The bytes of a good picture of 7 by 5 pixels for each extension; TIFF and PDF have two pages. The folder is for
/// scratch files.
std::map<std::string, std::string> goodPictures(const std::filesystem::path& folder);

/// A PNG of any size.
std::string pngOf(const QSize& size);

/// Fills a folder with files that bear the names of pictures and are damaged, hostile or no files at all; the same
/// ones each time. `hopeless` ones have no size.
struct BrokenPicture {
    std::filesystem::path path;
    bool hopeless = false;
};

std::vector<BrokenPicture> makeBrokenPictures(const std::filesystem::path& folder, int count);

} // namespace starbloom
