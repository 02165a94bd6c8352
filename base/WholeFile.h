// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

namespace starbloom {

/// Reads a whole file of at most `limit` bytes; nothing at all when nothing exists at the path.
///
/// Fails for what exists and is no readable file: a folder, a pipe or a device (which are not waited for), a file
/// without permission, one larger than the limit. The message names the path and ends with the reason. Any thread.
Result<std::optional<std::vector<std::byte>>> readWholeFile(const std::filesystem::path& path, std::size_t limit);

} // namespace starbloom
