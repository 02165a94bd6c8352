// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "persistence/stores/StoreTables.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace starbloom {

// What happens to a store's file as a whole; KeyValueStore decides when. One thread at a time.

/// The values of a store in the order of its default rows; nothing where the file has no usable value of that key.
using StoreValues = std::vector<std::optional<std::string>>;

/// The bytes of a store's file: the table and the default rows, inserted one by one, and the values given (none, or one
/// entry for each default row) over them. Any thread.
Result<std::vector<std::byte>> storeImage(const StoreDefinition& definition, const StoreValues& values = {});

/// Makes the store of a first launch from its image. It is written under another name, brought to the disk and renamed,
/// so that a program that is killed, or a disk that is full, leaves the whole store or none.
Result<void> createStoreFile(const std::filesystem::path& file, std::span<const std::byte> image);

/// Puts a new store in the place of one that cannot be used, with the values given (one entry for each default row)
/// over its default rows. The old file is renamed to "<name>.damaged-<number>", the first number that is free, together
/// with the journals that belong to it; that keeps every byte and needs no room on the disk. Gives its new name. The
/// new store is whole under another name before the old one is touched. Killed between the two renames, the next launch
/// finds no store and makes one with default rows. Fails rather than gather more than a hundred damaged files.
Result<std::filesystem::path> replaceStoreFile(const std::filesystem::path& file, const StoreDefinition& definition,
                                               const StoreValues& values);

/// Removes the temporary files that killed runs left in a folder. Those of programs that are running stay, except when
/// they are so old that their process number must have been given away again.
void removeStaleTemporaries(const std::filesystem::path& folder);

} // namespace starbloom
