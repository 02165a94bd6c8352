// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>

namespace starbloom {

// What the program says on standard error: lines for people, or, for the program that started it, one JSON object a
// line. Any thread; lines never mix.

/// Decides for the whole process; call before other threads start.
void reportAsJson(bool json);

/// Whether a command line asks for JSON, even one that turns out to be wrong.
bool asksForJson(std::span<const std::string> arguments);

/// Leaves warnings out from now on.
void muteWarnings();

/// Something that is probably a mistake but harms nothing.
void reportWarning(const std::string& message);

/// Whether a bar of progress stands in the present line, which the next message then takes over.
void setBarShown(bool shown);

/// Why the program ends without having done all.
void reportError(const std::string& message);

/// The last line of a run; people do not need it.
void reportEnd(int status);

/// How many frames are done; `secondsLeft` is negative while it cannot be told. In JSON alone.
struct ProgressReport {
    long long done = 0;
    long long total = 0;
    double seconds = 0.0;
    double secondsLeft = -1.0;
};

void reportProgress(const ProgressReport& progress);

bool reportsAsJson();

/// The worst second of one kind of flashes; see FlashFinding.
struct FlashEvent {
    bool passes = true;
    double flashes = 0.0;
    double start = 0.0; ///< Seconds.
    double area = 0.0;
    double x = 0.0;
    double y = 0.0;
};

/// In JSON alone.
void reportFlashes(bool passes, const FlashEvent& general, const FlashEvent& red);

} // namespace starbloom
