// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <charconv>
#include <string>

namespace starbloom {

/// "12.5". Not by printf, which follows the locale. Any thread may call it.
inline std::string textWithOneDecimal(double number) {
    // The largest double has 309 digits before the point.
    std::array<char, 330> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, 1);
    return {text.data(), end.ptr};
}

} // namespace starbloom
