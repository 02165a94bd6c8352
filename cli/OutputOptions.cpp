// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OutputOptions.h"

#include "cli/InTurn.h"
#include "cli/Numbers.h"
#include "cli/OutputName.h"

#include <utility>

namespace starbloom {

namespace {

constexpr std::string_view standardOutput = "-";

/// Tables on standard output.
std::optional<std::pair<OptionId, OutputKind>> askedTable(const Arguments& arguments) {
    for (const auto& [option, kind] : {std::pair(OptionId::ListParameters, OutputKind::ParameterList),
                                       std::pair(OptionId::Particles, OutputKind::ParticleTable)}) {
        if (arguments.given(option)) {
            return std::pair(option, kind);
        }
    }
    return std::nullopt;
}

/// What is made when no OUTPUT is named.
Result<void> readMissingOutput(const Arguments& arguments, Options& options) {
    if (arguments.given(OptionId::Join)) {
        return Error{"no OUTPUT given: write OUTPUT before --join, as all names behind it are parts"};
    }
    if (options.checksFlashes) {
        options.kind = OutputKind::FlashCheck;
        return {};
    }
    if (!options.showFile.empty()) {
        options.kind = OutputKind::ShowFile;
        return {};
    }
    return Error{"no OUTPUT given: name a picture (.png, .jpg, ...) or a movie (.m4v, .mp4); --help tells more"};
}

Result<void> readStream(const Arguments& arguments, Options& options) {
    options.kind = OutputKind::Clip;
    options.toStandardOutput = true;
    if (!arguments.given(OptionId::Format)) {
        return Error{"OUTPUT - needs --format rgba or --format y4m"};
    }
    const auto choice = readChoice(arguments, OptionId::Format);
    if (!choice) {
        return choice.error();
    }
    options.clipFormat = choice.value() == 0 ? ClipFormat::Rgba : ClipFormat::Y4m;
    return {};
}

Result<void> readKind(const Arguments& arguments, Options& options) {
    const std::string& output = arguments.output();
    if (const auto table = askedTable(arguments)) {
        options.kind = table->second;
        return output.empty()
                   ? Result<void>()
                   : Error{std::string(row(table->first).name) + " prints to standard output and takes no OUTPUT"};
    }
    if (output.empty()) {
        return readMissingOutput(arguments, options);
    }
    if (output == standardOutput) {
        return readStream(arguments, options);
    }
    if (arguments.given(OptionId::Format)) {
        return Error{"--format is for OUTPUT - alone; a file's ending tells its format"};
    }
    std::error_code ignored; // What cannot be looked at is told of when it is written.
    if (std::filesystem::is_other(output, ignored) && !ignored) {
        return Error{"'" + output +
                     "' is a pipe or a device: use -, which writes to standard output, and lead that there"};
    }
    const bool moves =
        arguments.given(OptionId::Seconds) || arguments.given(OptionId::Frames) || arguments.given(OptionId::Loop);
    return readOutputName(output, moves, options);
}

Result<void> readJoin(const Arguments& arguments, Options& options) {
    if (!arguments.given(OptionId::Join)) {
        return {};
    }
    const bool joins = options.kind == OutputKind::Movie ||
                       (options.kind == OutputKind::Clip && !options.toStandardOutput &&
                        (options.clipFormat == ClipFormat::ProRes || options.clipFormat == ClipFormat::Vp9));
    if (!joins) {
        return Error{"--join makes an OUTPUT of .m4v, .mp4, .mov or .webm alone"};
    }
    options.kind = OutputKind::Join;
    for (const std::string& part : arguments.texts(OptionId::Join)) {
        std::error_code ignored;
        if (!std::filesystem::is_regular_file(part, ignored)) {
            return Error{"--join: " + part + " is missing or no file"};
        }
        options.parts.emplace_back(part);
    }
    return {};
}

Result<void> readAlpha(const Arguments& arguments, Options& options) {
    options.transparent = arguments.given(OptionId::Transparent);
    options.onBlack = options.transparent;
    if (!arguments.given(OptionId::Alpha)) {
        return {};
    }
    const auto choice = readChoice(arguments, OptionId::Alpha);
    if (!choice) {
        return choice.error();
    }
    constexpr std::array modes{AlphaMode::Straight, AlphaMode::Premultiplied, AlphaMode::Opaque};
    options.alpha = modes.at(choice.value());
    options.transparent = options.alpha != AlphaMode::Opaque;
    options.onBlack = true;
    return {};
}

} // namespace

Result<void> readOutput(const Arguments& arguments, Options& options) {
    if (arguments.given(OptionId::SaveShow)) {
        options.showFile = arguments.text(OptionId::SaveShow);
    }
    options.checksFlashes = arguments.given(OptionId::CheckFlashes);
    return inTurn([&] { return readKind(arguments, options); }, [&] { return readJoin(arguments, options); },
                  [&] { return readAlpha(arguments, options); });
}

} // namespace starbloom
