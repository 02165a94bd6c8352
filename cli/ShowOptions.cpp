// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ShowOptions.h"

#include "cli/HexColor.h"
#include "cli/InTurn.h"
#include "cli/LikePicture.h"
#include "cli/Limits.h"
#include "cli/Numbers.h"
#include "cli/SavedShow.h"
#include "cli/ShowFile.h"
#include "cli/StageFit.h"

#include <cstdlib>

namespace starbloom {

namespace {

std::optional<std::string> environmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

Result<void> take(const Result<StageShape>& read, std::optional<StageShape>& shape) {
    if (!read) {
        return read.error();
    }
    shape = read.value();
    return {};
}

/// The show that the others are changes to.
Result<void> readBase(const Arguments& arguments, std::optional<StageShape>& shape, Options& options) {
    const bool like = arguments.given(OptionId::Like);
    const bool file = arguments.given(OptionId::Show);
    const bool saved = arguments.given(OptionId::Saved);
    if (like + file + saved > 1) {
        return Error{"--like, --show and --saved each name a whole show: give one of them"};
    }
    if (like) {
        return take(showLike(arguments.text(OptionId::Like), options), shape);
    }
    if (file) {
        return take(readShowFile(arguments.text(OptionId::Show), options), shape);
    }
    return saved ? showSaved(environmentVariable, options) : Result<void>();
}

Result<void> readBackground(const Arguments& arguments, Options& options) {
    if (!arguments.given(OptionId::Background)) {
        return {};
    }
    const std::string& text = arguments.text(OptionId::Background);
    const auto color = colorOfHex(text);
    if (!color) {
        return Error{"--background: '" + text + "' is not a colour of six hexadecimal digits, such as 101830"};
    }
    options.background = *color;
    return {};
}

Result<void> readSetting(const std::string& text, Options& options) {
    const auto equals = text.find('=');
    if (equals == std::string::npos) {
        return Error{"--set: '" + text + "' is not NAME=POSITION"};
    }
    const std::string name = text.substr(0, equals);
    const ParameterRow* parameter = findParameter(name);
    if (parameter == nullptr) {
        return Error{"--set: there is no parameter '" + name + "'; --list-parameters shows their names"};
    }
    const auto position = parseNumber<double>(text.substr(equals + 1));
    if (!position || *position < parameter->minimum || *position > parameter->maximum) {
        return Error{"--set: " + name + " takes a position from " + brief(parameter->minimum) + " to " +
                     brief(parameter->maximum) + ", not '" + text.substr(equals + 1) + "'"};
    }
    options.positions.setPosition(parameter->parameter, static_cast<float>(*position));
    if (parameter->parameter == Parameter::RocketHeight) {
        options.launchPoint.reset();
    }
    return {};
}

Result<void> readSettings(const Arguments& arguments, Options& options) {
    for (const std::string& setting : arguments.texts(OptionId::Set)) {
        if (auto set = readSetting(setting, options); !set) {
            return set;
        }
    }
    return {};
}

} // namespace

Result<void> readShow(const Arguments& arguments, Options& options) {
    std::optional<StageShape> shape;
    if (auto base = readBase(arguments, shape, options); !base) {
        return base;
    }
    if (arguments.given(OptionId::At)) {
        options.moment.reset();
    }
    constexpr std::uint64_t largestSeed = ~std::uint64_t{0};
    return inTurn([&] { return fitStage(arguments, shape, options); },
                  [&] { return readNumber(arguments, OptionId::Seed, std::uint64_t{0}, largestSeed, options.seed); },
                  [&] { return readNumber(arguments, OptionId::FadeIn, 0.0, longestFadeIn, options.fadeIn); },
                  [&] { return readBackground(arguments, options); }, [&] { return readSettings(arguments, options); });
}

} // namespace starbloom
