// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace starbloom {

// How pictures are exported, as "Data4.data" keeps it: an XML property list, an array of six texts. The first is the
// index of the format, the second that of the compression, and the four others are all the base name, of which the
// first is read. No state: any thread.

struct ExportSettings {
    int format = 4;               ///< 0 to 5, in the order of the pop-up; 4 is PNG.
    int compression = 0;          ///< 0 (100 %) to 19 (5 %).
    std::string name = "Picture"; ///< UTF-8, as it was typed, valid or not.

    friend bool operator==(const ExportSettings&, const ExportSettings&) = default;
};

/// The file's bytes; a name that XML cannot hold is an Error.
Result<std::vector<std::byte>> encodeExportSettings(const ExportSettings& settings);

/// The bytes are not trusted: less than three texts, and an index that is no number or has no entry, are an Error.
Result<ExportSettings> decodeExportSettings(std::span<const std::byte> bytes);

/// Replaces the file as a whole; see replaceFile() for what happens to a file that holds something else.
Result<void> saveExportSettings(const std::filesystem::path& file, const ExportSettings& settings);

/// What the file holds; nothing when there is no file or when it holds no settings, which the log tells.
std::optional<ExportSettings> loadExportSettings(const std::filesystem::path& file);

} // namespace starbloom
