// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace starbloom {

// The folder for exported pictures, as "Data3.data" keeps it: an XML property list, an array of one dictionary with the
// text "path" and the data "bookmark". A property list's text is UTF-8, a folder's name any bytes, so the bookmark,
// opaque to everyone else, holds the path's exact bytes. When those show as the same text as "path" they are the
// folder; otherwise (a bookmark made by another system, a path edited by hand) the text alone is. No state: any thread.

/// What is shown while no usable folder is known. In two pieces, for "??" before "/" is another character to compilers
/// that still know trigraphs.
inline constexpr std::string_view unknownFolderText = "/Users/???"
                                                      "/???";

/// The folder for exported pictures, if one is known.
struct SharedFolder {
    std::optional<std::filesystem::path> folder;

    /// The folder's path, or the placeholder, as UTF-8.
    std::string text() const;
};

/// A path as UTF-8 that XML can hold: bytes that are no UTF-8, control characters and the two noncharacters U+FFFE and
/// U+FFFF show as U+FFFD. Every other path is its own text.
std::string pathText(const std::filesystem::path& path);

/// The bytes that stand for a folder under "bookmark", and the folder that they stand for; nothing for bytes that can
/// be no path.
std::vector<std::byte> convertPathToBookmark(const std::filesystem::path& folder);
std::optional<std::filesystem::path> convertBookmarkToPath(std::span<const std::byte> bookmark);

/// The file's bytes for a folder, and the folder that such bytes name, which need not exist. What is read is not
/// trusted: anything but an array that starts with such a dictionary is an Error. A bookmark may be missing.
Result<std::vector<std::byte>> encodeSharedFolder(const std::filesystem::path& folder);
Result<std::filesystem::path> decodeSharedFolder(std::span<const std::byte> bytes);

/// Replaces the file as a whole and then loads it; see replaceFile() for what happens to a file that holds something
/// else. A failure goes to the log, and the answer is what the file holds after it.
SharedFolder saveSharedFolder(const std::filesystem::path& file, const std::filesystem::path& folder);

/// The folder that the file names, if both exist. A file that cannot be read acts as missing, and the log says why.
SharedFolder loadSharedFolder(const std::filesystem::path& file);

/// Where the panel for choosing the folder starts: in the first of the three that is an existing folder.
std::optional<std::filesystem::path> startFolder(const std::filesystem::path& pathControlText,
                                                 const std::filesystem::path& exportFolder,
                                                 const std::filesystem::path& documents);

} // namespace starbloom
