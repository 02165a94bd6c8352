// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/KeptCopy.h"
#include "base/Log.h"
#include "base/WholeFile.h"
#include "persistence/files/PropertyList.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace starbloom {

// What the small files that hold one property list have in common. `Decode` makes a Result<Value> of bytes that are not
// trusted. Any thread.

/// What the file holds; nothing when there is no file or when it holds no such value, which the log tells.
template <typename Value, typename Decode>
std::optional<Value> loadKept(const std::filesystem::path& file, Decode decode) {
    const auto bytes = readWholeFile(file, PropertyList::largestSize);
    if (!bytes) {
        log(LogLevel::Warning, "persistence", bytes.error().message);
        return std::nullopt;
    }
    if (!bytes.value()) {
        return std::nullopt;
    }
    Result<Value> value = decode(std::span<const std::byte>(*bytes.value()));
    if (!value) {
        log(LogLevel::Warning, "persistence", "cannot read " + file.string() + ": " + value.error().message);
        return std::nullopt;
    }
    return std::move(value).value();
}

/// Replaces the file as a whole by bytes that could be made; see replaceFile() for what happens to a file that holds
/// something else.
template <typename Decode>
Result<void> saveKept(const std::filesystem::path& file, const Result<std::vector<std::byte>>& bytes, Decode decode) {
    if (!bytes) {
        return bytes.error();
    }
    return replaceFile(file, bytes.value(), PropertyList::largestSize,
                       [&](std::span<const std::byte> present) -> Result<void> {
                           const auto decoded = decode(present);
                           return decoded ? Result<void>() : decoded.error();
                       });
}

} // namespace starbloom
