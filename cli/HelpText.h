// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace starbloom {

/// The answer to --help, in lines of at most 80 characters, made from the option table.
std::string helpText();

} // namespace starbloom
