// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace starbloom {

// Pure functions, for any thread. Names are UTF-8.

/// The base name of pictures whose own name cannot be used.
inline constexpr std::string_view fallbackPictureName = "Picture";

/// The rule for base names, as it colours the text field: at least `minimum` characters, no full stop in front, not
/// only spaces and tabs, no colon.
bool validateName4(std::string_view text, std::size_t minimum);

/// Whether a base name can become a file in the chosen folder: the rule above with one character at least, and neither
/// "/", which would lead out of the folder, nor a NUL, at which the system would end the name.
bool namesAFile(std::string_view text);

/// The candidate for the counter n, 0 being the first: Fire.png, Fire_001.png, Fire_002.png and so on; from 1000 on
/// numbers grow longer. With `numbered` the first is Fire_001.png already, which n = 1 then gives again.
std::string candidateName(std::string_view base, int n, std::string_view extension, bool numbered);

} // namespace starbloom
