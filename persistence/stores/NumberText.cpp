// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace starbloom {

namespace {

struct NumberStart {
    std::string_view digits;
    bool negative = false;
};

/// Takes blanks and sign off. What is left starts with a digit or a point, or is empty: that shuts out names of numbers
/// and second signs, which the standard library would read.
NumberStart numberStart(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const bool isNumber = !text.empty() && (text[0] == '.' || (text[0] >= '0' && text[0] <= '9'));
    return {isNumber ? text : std::string_view(), negative};
}

/// Whether a number that no float can hold is too large, and not too small: whether its first digit that counts, moved
/// by the exponent, stands before the point.
bool isLarge(std::string_view digits) {
    const auto mantissa = digits.substr(0, digits.find_first_of("eE"));
    const auto point = static_cast<double>(std::min(mantissa.find('.'), mantissa.find_first_not_of("0123456789.")));
    const auto first = static_cast<double>(mantissa.find_first_of("123456789"));
    const double place = std::min(point, static_cast<double>(mantissa.size())) - first;
    auto exponent = digits.substr(std::min(mantissa.size() + 1, digits.size()));
    if (exponent.starts_with('+')) {
        exponent.remove_prefix(1);
    }
    int power = 0;
    const auto parsed = std::from_chars(exponent.data(), exponent.data() + exponent.size(), power);
    if (parsed.ec == std::errc::result_out_of_range) {
        return !exponent.starts_with('-');
    }
    return place + power > 0;
}

} // namespace

int integerValue(std::string_view text) {
    const auto [digits, negative] = numberStart(text);
    // Negative numbers reach one further, so the sign is put back in front for the conversion.
    const std::string signedDigits = (negative ? "-" : "") + std::string(digits);
    int number = 0;
    const auto parsed = std::from_chars(signedDigits.data(), signedDigits.data() + signedDigits.size(), number);
    if (parsed.ec == std::errc::result_out_of_range) {
        return negative ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    return number;
}

float floatValue(std::string_view text) {
    const auto [digits, negative] = numberStart(text);
    float number = 0.0F;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (parsed.ec == std::errc::result_out_of_range) {
        number = isLarge(digits) ? std::numeric_limits<float>::max() : 0.0F;
    }
    return negative ? -number : number;
}

std::string textOfFloat(float number) {
    if (!std::isfinite(number) || number == 0.0F) {
        return "0";
    }
    constexpr int significantDigits = 7;
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, significantDigits)
            .ptr;
    return {text.data(), end};
}

} // namespace starbloom
