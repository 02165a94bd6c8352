// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace starbloom {

// The background colour as "Data6.data" keeps it: a binary property list in the layout of a keyed archive, whose root
// is an array of four references to one colour object in calibrated RGB ("NSColorSpace" 1). The numbers are the
// display RGB values as they are: 0..1, red, green and blue, and alpha when it is not 1. No state: any thread.

/// The file's bytes for a colour. Components beyond 0..1 are clamped, as drawing clamps them; one that is no number at
/// all is an Error.
Result<std::vector<std::byte>> encodeBackgroundColor(const Color& color);

/// The first colour of such a file. Its array may be mutable, hold one colour object or several, and have any length
/// but 0; a colour may be in device RGB ("NSColorSpace" 2) and its numbers data or text, with or without the NUL at the
/// end. Components are clamped to 0..1: converting between colour spaces leaves values slightly beyond.
/// The bytes are not trusted: anything else, and a component that is no finite number, is an Error.
Result<Color> decodeBackgroundColor(std::span<const std::byte> bytes);

/// Replaces the file as a whole; see replaceFile() for what happens to a file that holds something else.
Result<void> saveBackgroundColor(const std::filesystem::path& file, const Color& color);

/// The saved colour; nothing when there is no file, or when it holds none, which the log tells with the reason.
std::optional<Color> loadBackgroundColor(const std::filesystem::path& file);

} // namespace starbloom
