// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Options.h"

#include "cli/Arguments.h"
#include "cli/HelpText.h"
#include "cli/InTurn.h"
#include "cli/Limits.h"
#include "cli/Numbers.h"
#include "cli/OptionChecks.h"
#include "cli/OutputName.h"
#include "cli/OutputOptions.h"
#include "cli/ShowOptions.h"
#include "export/movie/MovieTiming.h"

namespace starbloom {

namespace {

Result<void> readNumbers(const Arguments& a, Options& options) {
    int percent = 100;
    auto read = inTurn([&] { return readNumber(a, OptionId::At, 0.0, longestShow, options.at); },
                       [&] { return readNumber(a, OptionId::From, 0.0, longestShow, options.from); },
                       [&] { return readNumber(a, OptionId::Seconds, 0.0, longestShow, options.seconds); },
                       [&] { return readNumber(a, OptionId::Fps, 1, largestRate, options.framesPerSecond); },
                       [&] { return readNumber(a, OptionId::Shutter, 0.0, 1.0, options.shutter); },
                       [&] { return readNumber(a, OptionId::Threads, 0, mostThreads, options.threads); },
                       [&] { return readNumber(a, OptionId::Quality, 5, 100, percent); });
    if (a.given(OptionId::Quality)) {
        options.quality = percent / 100.0;
    }
    return read;
}

Result<void> readReporting(const Arguments& arguments, Options& options) {
    options.quiet = arguments.given(OptionId::Quiet);
    options.progress = options.quiet ? ProgressStyle::None : ProgressStyle::Bar;
    if (!arguments.given(OptionId::Progress)) {
        return {};
    }
    const auto style = readChoice(arguments, OptionId::Progress);
    if (!style) {
        return style.error();
    }
    options.progress = static_cast<ProgressStyle>(style.value());
    return {};
}

/// Which frames of the whole: "10:20", "10:" or ":20". Without a length that was asked for, the whole has no end.
Result<void> readFrames(const Arguments& arguments, Options& options) {
    if (!arguments.given(OptionId::Frames)) {
        return {};
    }
    const std::string& text = arguments.text(OptionId::Frames);
    const auto colon = text.find(':');
    const auto number = [&](const std::string& part, std::int64_t otherwise) {
        return part.empty() ? otherwise : parseNumber<std::int64_t>(part).value_or(-1);
    };
    const std::int64_t first = number(text.substr(0, colon), 0);
    const std::int64_t end = colon == std::string::npos ? -1 : number(text.substr(colon + 1), options.frameCount());
    if (first < 0 || end <= first) {
        return Error{"--frames: '" + text + "' is not A:B with A less than B, such as 0:100 for the first hundred"};
    }
    const bool hasEnd = arguments.given(OptionId::Seconds) || options.loop || text.ends_with(':');
    if (hasEnd && end > options.frameCount()) {
        return Error{"--frames: " + text + " goes beyond the end: --seconds " + brief(options.seconds) + " at --fps " +
                     std::to_string(options.framesPerSecond) + " has frames 0 to " +
                     std::to_string(options.frameCount() - 1)};
    }
    if (frameTime(end, options.framesPerSecond) > longestShow) {
        return Error{"--frames: a show is at most " + brief(longestShow) + " seconds long"};
    }
    options.part = FrameSpan{first, end};
    return {};
}

/// Looks closer at what was typed. The show to start from comes before what is given besides it.
Result<void> understand(const Arguments& arguments, Options& options) {
    options.loop = arguments.given(OptionId::Loop);
    options.skipsExisting = arguments.given(OptionId::SkipExisting);
    return inTurn([&] { return readReporting(arguments, options); }, [&] { return readShow(arguments, options); },
                  [&] { return readNumbers(arguments, options); }, [&] { return readFrames(arguments, options); },
                  [&] { return readOutput(arguments, options); }, [&] { return checkTogether(arguments, options); });
}

Options messageOf(std::string message) {
    Options options;
    options.kind = OutputKind::Message;
    options.message = std::move(message);
    return options;
}

} // namespace

std::int64_t Options::frameCount() const {
    return starbloom::frameCount(seconds, framesPerSecond);
}

Color Options::drawnBackground() const {
    return onBlack ? Color{0.0F, 0.0F, 0.0F, 1.0F} : background;
}

Size Options::stage() const {
    return {width / pixelsPerPoint, height / pixelsPerPoint};
}

std::filesystem::path Options::framePath(std::int64_t frame) const {
    return numberedPath(output, frame);
}

Result<Options> parseOptions(std::span<const std::string> arguments) {
    const auto parsed = Arguments::parse(arguments);
    if (!parsed) {
        return parsed.error();
    }
    if (parsed.value().given(OptionId::Help)) {
        return messageOf(helpText());
    }
    if (parsed.value().given(OptionId::Version)) {
        return messageOf("starbloom-render " STARBLOOM_VERSION "\n");
    }
    Options options;
    if (auto understood = understand(parsed.value(), options); !understood) {
        return understood.error();
    }
    warnAboutIdleOptions(parsed.value(), options);
    return options;
}

} // namespace starbloom
