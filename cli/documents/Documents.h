// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace starbloom {

// What is installed beside starbloom-render, made from its option table while the program is built, so that the two
// cannot disagree. Pure functions.

/// The manual page, in the language of man(7).
std::string manualPage(std::string_view version);

/// What shells complete.
std::string bashCompletion();
std::string zshCompletion();
std::string fishCompletion();

} // namespace starbloom
