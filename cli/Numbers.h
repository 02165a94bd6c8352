// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "cli/Arguments.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace starbloom {

/// Reads a whole text as a number; nothing when there is anything else in it, or the number is not finite.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(number)) {
            return std::nullopt;
        }
    }
    return number;
}

/// A number without needless digits, for messages.
template <typename Number>
std::string brief(Number number) {
    if constexpr (std::is_integral_v<Number>) {
        return std::to_string(number);
    } else {
        std::array<char, 32> text{};
        const int length = std::snprintf(text.data(), text.size(), "%.7g", static_cast<double>(number));
        return {text.data(), static_cast<std::size_t>(length)};
    }
}

/// Reads the number of an option, which must lie within a range; one that was not given leaves `number` as it is.
template <typename Number>
Result<void> readNumber(const Arguments& arguments, OptionId option, Number lowest, Number highest, Number& number) {
    if (!arguments.given(option)) {
        return {};
    }
    const std::string& text = arguments.text(option);
    const auto parsed = parseNumber<Number>(text);
    if (!parsed || *parsed < lowest || *parsed > highest) {
        const char* kind = std::is_integral_v<Number> ? " takes a whole number from " : " takes a number from ";
        return Error{std::string(row(option).name) + kind + brief(lowest) + " to " + brief(highest) + ", not '" + text +
                     "'"};
    }
    number = *parsed;
    return {};
}

/// Which of its words an option was given, counted from 0.
inline Result<std::size_t> readChoice(const Arguments& arguments, OptionId option) {
    const std::string& text = arguments.text(option);
    std::string_view words = row(option).valueName;
    for (std::size_t index = 0; !words.empty(); ++index) {
        const auto bar = words.find('|');
        if (words.substr(0, bar) == text) {
            return index;
        }
        words = bar == std::string_view::npos ? std::string_view() : words.substr(bar + 1);
    }
    return Error{std::string(row(option).name) + " takes " + std::string(row(option).valueName) + ", not '" + text +
                 "'"};
}

} // namespace starbloom
