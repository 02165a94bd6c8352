// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/HelpText.h"

#include "cli/OptionTable.h"

#include <string_view>

namespace starbloom {

namespace {

constexpr std::size_t lineWidth = 80;
constexpr std::size_t helpColumn = 26;

/// A term, and what it means beside it, broken between words.
void addEntry(std::string& text, const std::string& term, std::string_view meaning) {
    std::string line = "  " + term;
    if (line.size() + 2 > helpColumn) {
        text += line + '\n';
        line.clear();
    }
    line.resize(helpColumn, ' ');
    while (!meaning.empty()) {
        const auto space = meaning.find(' ');
        const std::string_view word = meaning.substr(0, space);
        const bool begins = line.size() == helpColumn;
        if (!begins && line.size() + 1 + word.size() > lineWidth) {
            text += line + '\n';
            line.assign(helpColumn, ' ');
        } else if (!begins) {
            line += ' ';
        }
        line += word;
        meaning = space == std::string_view::npos ? std::string_view() : meaning.substr(space + 1);
    }
    text += line + '\n';
}

} // namespace

std::string helpText() {
    std::string text = "Renders a fireworks show without a screen.\n\n"
                       "Usage: starbloom-render [OPTIONS] OUTPUT\n\n";
    addEntry(text, std::string(outputName), outputHelp);
    std::string_view heading;
    for (const OptionRow& each : optionTable()) {
        if (each.heading != heading) {
            heading = each.heading;
            text += "\n" + std::string(heading) + ":\n";
        }
        const std::string value = each.valueName.empty() ? "" : " " + std::string(each.valueName);
        addEntry(text, std::string(each.name) + value, each.help);
    }
    text += "\nExit status:\n";
    for (const StatusRow& each : statusTable()) {
        addEntry(text, std::to_string(each.status), each.meaning);
    }
    return text + "\nThe manual page, man starbloom-render, tells more.\n";
}

} // namespace starbloom
