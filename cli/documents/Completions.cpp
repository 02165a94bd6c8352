// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OptionTable.h"
#include "cli/documents/Documents.h"
#include "engine/panel/ParameterTable.h"

#include <algorithm>

namespace starbloom {

namespace {

/// The words of a Choice, with spaces between them.
std::string wordsOf(const OptionRow& row) {
    std::string words(row.valueName);
    std::ranges::replace(words, '|', ' ');
    return words;
}

/// NAME= for all parameters.
std::string settings(const std::string& equals) {
    std::string names;
    for (const ParameterRow& each : parameterTable) {
        names += (names.empty() ? "" : " ") + std::string(each.name) + equals;
    }
    return names;
}

/// Each option of a kind, as the alternatives of a shell's case.
std::string alternatives(OptionValue value) {
    std::string names;
    for (const OptionRow& each : optionTable()) {
        if (each.value == value) {
            names += (names.empty() ? "" : "|") + std::string(each.name);
        }
    }
    return names;
}

std::string escaped(std::string_view text, std::string_view special) {
    std::string result;
    for (const char c : text) {
        result += (special.find(c) == std::string_view::npos ? "" : "\\") + std::string(1, c);
    }
    return result;
}

/// Within single quotes of a POSIX shell.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return result + "'";
}

/// What follows an option in zsh, ":VALUE:what completes it".
std::string zshValue(const OptionRow& row) {
    const std::string name = escaped(row.valueName, ":[]\\");
    switch (row.value) {
    case OptionValue::None:
        return "";
    case OptionValue::Text:
        return ":" + name + ": ";
    case OptionValue::Choice:
        return ":" + std::string(row.name.substr(2)) + ":(" + wordsOf(row) + ")";
    case OptionValue::Setting:
        return ":" + name + ":compadd -S '' - " + settings("=");
    case OptionValue::File:
    case OptionValue::Files:
        return ":" + name + ":_files";
    }
    return "";
}

std::string fishValue(const OptionRow& row) {
    switch (row.value) {
    case OptionValue::None:
        return "";
    case OptionValue::Text:
        return " -x";
    case OptionValue::Choice:
        return " -x -a '" + wordsOf(row) + "'";
    case OptionValue::Setting:
        return " -x -a '" + settings("=") + "'";
    case OptionValue::File:
    case OptionValue::Files:
        return " -r -F";
    }
    return "";
}

} // namespace

std::string bashCompletion() {
    std::string names;
    std::string choices;
    for (const OptionRow& each : optionTable()) {
        names += (names.empty() ? "" : " ") + std::string(each.name);
        if (each.value == OptionValue::Choice) {
            choices += "        " + std::string(each.name) + ")\n            COMPREPLY=($(compgen -W '" +
                       wordsOf(each) + "' -- \"$word\"))\n            return ;;\n";
        }
    }
    return "# Completes starbloom-render in bash.\n"
           "_starbloom_render() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
           "    COMPREPLY=()\n"
           "    compopt -o filenames 2>/dev/null\n"
           "    case $before in\n" +
           choices + "        " + alternatives(OptionValue::Setting) +
           ")\n"
           "            compopt -o nospace +o filenames 2>/dev/null\n"
           "            COMPREPLY=($(compgen -W '" +
           settings("=") +
           "' -- \"$word\"))\n"
           "            return ;;\n"
           "        " +
           alternatives(OptionValue::Text) +
           ")\n"
           "            return ;;\n"
           "    esac\n"
           "    if [[ $word == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W '" +
           names +
           "' -- \"$word\"))\n"
           "    else\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
           "    fi\n"
           "}\n"
           "complete -F _starbloom_render starbloom-render\n";
}

std::string zshCompletion() {
    std::string text = "#compdef starbloom-render\n_arguments \\\n";
    for (const OptionRow& each : optionTable()) {
        const std::string again = each.value == OptionValue::Setting ? "*" : "";
        text += "    " +
                quoted(again + std::string(each.name) + "[" + escaped(each.help, "[]\\:") + "]" + zshValue(each)) +
                " \\\n";
    }
    return text + "    '*:OUTPUT:_files'\n";
}

std::string fishCompletion() {
    std::string text = "# Completes starbloom-render in fish.\n";
    for (const OptionRow& each : optionTable()) {
        text += "complete -c starbloom-render -l " + std::string(each.name.substr(2)) + fishValue(each) + " -d '" +
                escaped(each.help, "'\\") + "'\n";
    }
    return text;
}

} // namespace starbloom
