// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

/// Sends the program's log to the desktop's logging, for the rest of the run: one category per folder of the program,
/// "starbloom.engine", "starbloom.export", ..., which QT_LOGGING_RULES can switch on and off one by one. As all of that
/// logging, it goes to standard error or the system's journal, never to standard output.
void sendLogToCategories();

} // namespace starbloom
