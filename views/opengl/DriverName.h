// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <string>

namespace starbloom {

/// The name of what would draw for windows of a window system ("xcb", "wayland"), asked on a connection of its own that
/// is closed again. The driver's libraries stay loaded, so the window's own context comes quickly. Any thread. An empty
/// name for a window system that cannot be asked.
Result<std::string> driverName(const std::string& platform);

} // namespace starbloom
