// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/FileNames.h"

#include <algorithm>

namespace starbloom {

bool validateName4(std::string_view text, std::size_t minimum) {
    // Bytes that continue a character in UTF-8 look like 10xxxxxx.
    const auto length = std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) >> 6U) != 2; });
    return static_cast<std::size_t>(length) >= minimum && !text.starts_with('.') &&
           text.find_first_not_of(" \t") != std::string_view::npos && text.find(':') == std::string_view::npos;
}

bool namesAFile(std::string_view text) {
    return validateName4(text, 1) && text.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

std::string candidateName(std::string_view base, int n, std::string_view extension, bool numbered) {
    std::string name(base);
    if (n > 0 || numbered) {
        const std::string number = std::to_string(std::max(n, 1));
        name += "_" + std::string(number.size() < 3 ? 3 - number.size() : 0, '0') + number;
    }
    return name.append(".").append(extension);
}

} // namespace starbloom
