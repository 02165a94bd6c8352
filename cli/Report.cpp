// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Report.h"

#include "cli/OptionTable.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>

namespace starbloom {

namespace {

using Json = nlohmann::ordered_json;

bool inJson = false;
bool warningsMuted = false;
std::atomic<bool> barShown = false;

/// In one piece, so that lines of several threads do not mix.
void printLine(std::string line) {
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

/// File names need not be UTF-8, JSON must be.
void printJson(const Json& object) {
    printLine(object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void report(const char* event, const std::string& message) {
    if (inJson) {
        printJson({{"event", event}, {"message", message}});
        return;
    }
    std::string line = message;
    std::ranges::replace(line, '\n', ' ');
    printLine((barShown ? "\r\033[K" : "") + ("starbloom-render: " + line));
}

/// Thousandths are enough, and short.
double brief(double number) {
    return std::round(number * 1000.0) / 1000.0;
}

Json objectOf(const FlashEvent& event) {
    return {{"passes", event.passes},    {"flashes", event.flashes}, {"start", brief(event.start)},
            {"area", brief(event.area)}, {"x", brief(event.x)},      {"y", brief(event.y)}};
}

} // namespace

void reportAsJson(bool json) {
    inJson = json;
}

bool asksForJson(std::span<const std::string> arguments) {
    const std::string name(row(OptionId::Progress).name);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == name + "=json" ||
            (arguments[i] == name && i + 1 < arguments.size() && arguments[i + 1] == "json")) {
            return true;
        }
    }
    return false;
}

void muteWarnings() {
    warningsMuted = true;
}

void reportWarning(const std::string& message) {
    if (!warningsMuted) {
        report("warning", message);
    }
}

void setBarShown(bool shown) {
    barShown = shown;
}

void reportError(const std::string& message) {
    report("error", message);
}

void reportEnd(int status) {
    if (inJson) {
        printJson({{"event", "end"}, {"status", status}});
    }
}

bool reportsAsJson() {
    return inJson;
}

void reportFlashes(bool passes, const FlashEvent& general, const FlashEvent& red) {
    if (inJson) {
        printJson({{"event", "flashes"}, {"passes", passes}, {"general", objectOf(general)}, {"red", objectOf(red)}});
    }
}

void reportProgress(const ProgressReport& progress) {
    if (!inJson) {
        return;
    }
    Json object{{"event", "progress"},
                {"done", progress.done},
                {"total", progress.total},
                {"seconds", brief(progress.seconds)}};
    if (progress.secondsLeft >= 0.0) {
        object["secondsLeft"] = brief(progress.secondsLeft);
    }
    printJson(object);
}

} // namespace starbloom
