// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"

#include <optional>
#include <string>
#include <string_view>

namespace starbloom {

/// The colour of six hexadecimal digits, with or without a # before them.
std::optional<Color> colorOfHex(std::string_view text);

/// The other way round: the colour as it is drawn, which is on black where it is not opaque.
std::string hexOf(const Color& color);

} // namespace starbloom
