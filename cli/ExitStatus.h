// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

namespace starbloom {

/// What a run ends with.
enum ExitStatus : int {
    Done = 0,
    WriteFailed = 1,
    BadInput = 2,
    TooManyFlashes = 3,
    Interrupted = 130, ///< As shells number a program that Ctrl+C ended.
};

/// Reports the error, and yields the status.
ExitStatus failed(ExitStatus status, const Error& error);

/// The end of a run that made or should have made files.
ExitStatus finished(const Result<void>& result);

} // namespace starbloom
