// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Arguments.h"

#include <CLI/CLI.hpp>

#include <utility>

namespace starbloom {

namespace {

void declare(CLI::App& app, const OptionRow& row) {
    const std::string name = (row.id == OptionId::Help ? "-h," : "") + std::string(row.name);
    CLI::Option* option = row.value == OptionValue::None ? app.add_flag(name) : app.add_option(name);
    option->type_name(std::string(row.valueName));
    if (row.value == OptionValue::Files) {
        option->expected(1, -1)->allow_extra_args();
    } else if (row.value != OptionValue::None) {
        option->take_all()->allow_extra_args(false); // What comes too often is told in our own words.
    }
}

/// The library's words begin with the option's name and a colon.
Error missingValue(const std::string& words) {
    const std::string name = words.substr(0, words.find(':'));
    for (const OptionRow& each : optionTable()) {
        if (each.name == name) {
            return {name + " needs " + std::string(each.valueName) + " behind it"};
        }
    }
    return {words};
}

/// Whoever writes --loop=false does not want a loop.
Result<void> checkFlags(std::span<const std::string> arguments) {
    for (const std::string& argument : arguments) {
        const std::string name = argument.substr(0, argument.find('='));
        for (const OptionRow& each : optionTable()) {
            if (each.value == OptionValue::None && each.name == name && name.size() < argument.size()) {
                return Error{name + " takes no value: write it alone, or leave it out"};
            }
        }
    }
    return {};
}

} // namespace

Result<Arguments> Arguments::parse(std::span<const std::string> arguments) {
    if (auto checked = checkFlags(arguments); !checked) {
        return checked.error();
    }
    CLI::App app;
    app.set_help_flag();
    Arguments read;
    app.add_option("OUTPUT", read.m_output);
    for (const OptionRow& each : optionTable()) {
        declare(app, each);
    }
    try {
        // The library takes its arguments from the back.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ExtrasError& error) {
        const auto rest = app.remaining();
        const std::string first = rest.empty() ? error.what() : rest.front();
        return Error{first.starts_with("-") ? "there is no option '" + first + "'; --help lists them"
                                            : "'" + first + "' is one OUTPUT too many"};
    } catch (const CLI::ArgumentMismatch& error) {
        return missingValue(error.what());
    } catch (const CLI::ParseError& error) {
        return Error{error.what()};
    }
    for (const OptionRow& each : optionTable()) {
        const CLI::Option* option = app.get_option(std::string(each.name));
        const bool mayRepeat =
            each.value != OptionValue::Text && each.value != OptionValue::Choice && each.value != OptionValue::File;
        if (option->count() > 1 && !mayRepeat) {
            return Error{std::string(each.name) + " is given " + std::to_string(option->count()) +
                         " times; once is enough"};
        }
        if (option->count() > 0) {
            read.m_values[each.id] = option->results();
        }
    }
    return read;
}

const std::vector<std::string>& Arguments::texts(OptionId option) const {
    static const std::vector<std::string> none;
    const auto found = m_values.find(option);
    return found == m_values.end() ? none : found->second;
}

} // namespace starbloom
