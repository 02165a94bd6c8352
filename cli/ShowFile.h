// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "cli/StageFit.h"

#include <filesystem>
#include <string>

namespace starbloom {

// A whole show in a small file of JSON that people may edit: positions, seed, size, scale, background, fade-in, and the
// launch point where it is not the one that the positions give. docs/file-formats.md describes it.

/// Always the same text for the same show.
std::string showFileText(const Options& options);

/// Sets options to the show of a file, and yields its stage. What the file leaves out has its default. The file is not
/// trusted: anything unknown, of the wrong kind or out of range is an Error that names the file and the entry.
Result<StageShape> readShowFile(const std::filesystem::path& file, Options& options);

} // namespace starbloom
