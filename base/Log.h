// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string_view>

namespace starbloom {

enum class LogLevel { Info, Warning };

/// Takes one line of the log: how serious, which folder of the program it comes from ("engine", "export", ...), the
/// text without a line end.
using LogSink = std::function<void(LogLevel level, std::string_view area, std::string_view message)>;

/// Decides where the log goes, for the whole process: the shell sends it to the desktop's logging categories, the
/// command line to standard error. An empty sink drops everything, which is also the state at start.
/// May be called from any thread; a message on its way to the old sink is finished first.
void setLogSink(LogSink sink);

/// Sends one message to the sink. May be called from any thread; messages never overlap in the sink.
void log(LogLevel level, std::string_view area, std::string_view message);

} // namespace starbloom
