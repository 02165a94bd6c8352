// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

namespace starbloom {

/// Takes steps, functions that yield a Result<void>, one after the other up to the first that fails.
template <typename... Steps>
Result<void> inTurn(const Steps&... steps) {
    Result<void> result;
    const auto run = [&](const auto& step) { return static_cast<bool>(result = step()); };
    (void)(... && run(steps));
    return result;
}

} // namespace starbloom
