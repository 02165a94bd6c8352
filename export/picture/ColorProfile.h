// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <vector>

namespace starbloom {

/// An ICC profile (version 4, display, matrix and curve) that says sRGB, of about half a kilobyte. Always the same
/// bytes; any thread.
std::vector<std::byte> srgbProfile();

} // namespace starbloom
