// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/HexColor.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace starbloom {

std::optional<Color> colorOfHex(std::string_view text) {
    if (text.starts_with('#')) {
        text.remove_prefix(1);
    }
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.size() != 6 || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    const auto channel = [value](unsigned shift) { return static_cast<float>((value >> shift) & 0xFFU) / 255.0F; };
    return Color{channel(16), channel(8), channel(0), 1.0F};
}

std::string hexOf(const Color& color) {
    const auto channel = [&](float value) { return static_cast<unsigned>(std::lround(value * color.alpha * 255.0F)); };
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%02x%02x%02x", channel(color.red) & 0xFFU, channel(color.green) & 0xFFU,
                  channel(color.blue) & 0xFFU);
    return text.data();
}

} // namespace starbloom
