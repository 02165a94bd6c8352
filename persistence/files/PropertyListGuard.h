// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <span>

namespace starbloom {

// What is looked at before foreign bytes reach the property-list library, so that nothing in them makes it run out of
// stack, memory or time. Passing says only that parsing is harmless, not that it will succeed. The limits are told at
// PropertyList. No state: any thread.

/// Counts the containers and looks for the end tag. Comments and texts are not told apart from tags: what looks like a
/// container counts as one, so nothing that is nested can hide.
Result<void> checkXmlPropertyList(std::span<const std::byte> bytes);

/// Walks through all values from the root, as the library is going to, but within limits.
Result<void> checkBinaryPropertyList(std::span<const std::byte> bytes);

} // namespace starbloom
