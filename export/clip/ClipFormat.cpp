// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipFormat.h"

#include <algorithm>
#include <string>

namespace starbloom {

std::optional<ClipFormat> clipFormatOf(const std::filesystem::path& path) {
    std::string extension = path.extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto* found = std::ranges::find(clipFormats, extension, &ClipTraits::extension);
    return found != clipFormats.end() ? std::optional(found->format) : std::nullopt;
}

} // namespace starbloom
