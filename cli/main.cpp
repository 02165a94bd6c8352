// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"
#include "cli/Commands.h"
#include "cli/Interruption.h"

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    using namespace starbloom;
    installSignalHandlers();
    setLogSink([](LogLevel level, std::string_view, std::string_view message) {
        if (level == LogLevel::Warning) {
            printError({std::string(message)});
        }
    });
    try {
        const std::vector<std::string> arguments(argv + 1, argv + argc);
        const auto options = parseOptions(arguments);
        if (!options) {
            printError(options.error());
            return BadInput;
        }
        return runCommand(options.value());
    } catch (const std::exception& error) {
        printError({std::string("out of resources: ") + error.what()});
        return WriteFailed;
    }
}
