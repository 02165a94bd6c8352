// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>

namespace starbloom {

/// Moves what lies at the path aside, to "Name.damaged-1" in the same folder or the next number that is free, and tells
/// where it is now. Nothing that has that name already is written over.
///
/// The thing itself is moved instead of being copied: that also works on a full disk, without permission to read, and
/// for a folder in the file's place, and it cannot change afterwards. Until the caller has written the new file nothing
/// lies at the path, which acts as the damaged file did: as missing. Fails when nothing is there or the folder does not
/// allow it; the message names the path and ends with the reason. Any thread.
Result<std::filesystem::path> keepDamagedCopy(const std::filesystem::path& path);

/// Tells whether a file's bytes are what the file should hold; an Error says what is wrong with them.
using ContentCheck = std::function<Result<void>(std::span<const std::byte> bytes)>;

/// Replaces a file as a whole, as writeFile() does. What is there now and cannot be read, is larger than `limit` bytes
/// or fails the check is kept beside it first and the log says so; when it cannot be kept, nothing is written and the
/// reason is the Error. Any thread, though two that write the same file race for which of them is last.
Result<void> replaceFile(const std::filesystem::path& target, std::span<const std::byte> bytes, std::size_t limit,
                         const ContentCheck& check);

} // namespace starbloom
