// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ExitStatus.h"

#include "cli/Interruption.h"
#include "cli/Report.h"

namespace starbloom {

ExitStatus failed(ExitStatus status, const Error& error) {
    reportError(error.message);
    return status;
}

ExitStatus finished(const Result<void>& result) {
    if (interrupted()) {
        return failed(Interrupted, {"interrupted; nothing unfinished is left behind"});
    }
    return result ? Done : failed(WriteFailed, result.error());
}

} // namespace starbloom
