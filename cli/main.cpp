// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"
#include "cli/Commands.h"
#include "cli/Interruption.h"
#include "cli/Report.h"

#include <exception>
#include <string>
#include <vector>

namespace {

using namespace starbloom;

int run(const std::vector<std::string>& arguments) {
    try {
        const auto options = parseOptions(arguments);
        if (!options) {
            reportError(options.error().message);
            return BadInput;
        }
        return runCommand(options.value());
    } catch (const std::exception& error) {
        reportError(std::string("out of resources: ") + error.what());
        return WriteFailed;
    }
}

} // namespace

int main(int argc, char** argv) {
    installSignalHandlers();
    setLogSink([](LogLevel level, std::string_view, std::string_view message) {
        if (level == LogLevel::Warning) {
            reportWarning(std::string(message));
        }
    });
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    reportAsJson(asksForJson(arguments));
    const int status = run(arguments);
    reportEnd(status);
    return status;
}
