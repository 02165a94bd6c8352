// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

/// Lets Ctrl+C and a request to terminate end the program in order, with its unfinished file removed, and turns writing
/// to a full or limited disk or a closed pipe into ordinary errors. Call once, before any other thread starts.
void installSignalHandlers();

/// Whether the user wants the program to stop.
bool interrupted();

} // namespace starbloom
