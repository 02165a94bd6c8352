// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/ParameterTable.h"

#include <QString>

namespace starbloom {

// The words of the fourteen parameters, the same in all windows. GUI thread.

/// One of a parameter's texts: "Title", "Effect", "Unit" or "Guide".
QString textFor(const ParameterRow& row, const char* kind);

/// The key of the group that a parameter is in.
const char* groupOf(Parameter parameter);

} // namespace starbloom
