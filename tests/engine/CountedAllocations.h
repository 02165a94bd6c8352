// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

namespace starbloom {

/// How often the test program has asked for memory so far, by all its threads.
std::size_t countedAllocations();

} // namespace starbloom
