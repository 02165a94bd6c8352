// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Options.h"

#include "export/movie/MovieTiming.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <optional>
#include <tuple>

namespace starbloom {

namespace {

constexpr int largestSide = 65536;
constexpr int largestMovieSide = 16384; // What H.264 encoders take.
constexpr double longestShow = 1.0e6;   // Seconds: eleven days.
constexpr double longestFadeIn = 3600.0;
constexpr double shortestFadeIn = 0.5;
constexpr int largestRate = 240;
constexpr int mostThreads = 1024;

/// The arguments as they were typed, before they are looked at more closely.
struct RawOptions {
    std::string output;
    std::string size = "640x480";
    std::string background = "000000";
    std::string at = "5";
    std::string from = "0";
    std::string seconds = "10";
    std::string framesPerSecond = "30";
    std::string seed = "1";
    std::string fadeIn = "0";
    std::string threads = "0";
    std::vector<std::string> settings;
    bool particles = false;
    bool listParameters = false;
    bool version = false;
};

/// Reads a whole text as a number; nothing when there is anything else in it, or the number is not finite.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(number)) {
            return std::nullopt;
        }
    }
    return number;
}

/// A number without needless digits, for messages.
std::string brief(double number) {
    std::array<char, 32> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.7g", number);
    return {text.data(), static_cast<std::size_t>(length)};
}

/// Reads the number of an option, which must lie within a range.
template <typename Number>
Result<void> parseInRange(const char* option, const std::string& text, Number lowest, Number highest, Number& number) {
    const auto parsed = parseNumber<Number>(text);
    if (!parsed || *parsed < lowest || *parsed > highest) {
        const char* kind = std::is_integral_v<Number> ? "a whole number" : "a number";
        std::string range = "to " + std::to_string(highest);
        if constexpr (std::is_floating_point_v<Number>) {
            range = "to " + brief(highest);
        }
        return Error{std::string(option) + " takes " + kind + " from " + std::to_string(static_cast<int>(lowest)) +
                     " " + range + ", not '" + text + "'"};
    }
    number = *parsed;
    return {};
}

Result<void> parseNumbers(const RawOptions& raw, Options& options) {
    for (const auto& [option, text, highest, number] :
         {std::tuple("--at", &raw.at, longestShow, &options.at),
          std::tuple("--from", &raw.from, longestShow, &options.from),
          std::tuple("--seconds", &raw.seconds, longestShow, &options.seconds),
          std::tuple("--fade-in", &raw.fadeIn, longestFadeIn, &options.fadeIn)}) {
        if (auto parsed = parseInRange(option, *text, 0.0, highest, *number); !parsed) {
            return parsed;
        }
    }
    if (auto fps = parseInRange("--fps", raw.framesPerSecond, 1, largestRate, options.framesPerSecond); !fps) {
        return fps;
    }
    if (auto threads = parseInRange("--threads", raw.threads, 0, mostThreads, options.threads); !threads) {
        return threads;
    }
    return parseInRange<std::uint64_t>("--seed", raw.seed, 0, ~std::uint64_t{0}, options.seed);
}

Result<void> parseSize(const std::string& text, Options& options) {
    const auto cross = text.find_first_of("xX");
    const auto width = parseNumber<int>(text.substr(0, cross));
    const auto height = cross == std::string::npos ? std::nullopt : parseNumber<int>(text.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largestSide || *height > largestSide) {
        return Error{"--size: '" + text + "' is not WIDTHxHEIGHT with both from 1 to " + std::to_string(largestSide)};
    }
    options.width = *width;
    options.height = *height;
    return {};
}

Result<void> parseBackground(std::string text, Options& options) {
    if (text.starts_with('#')) {
        text.erase(0, 1);
    }
    unsigned value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.size() != 6 || error != std::errc() || end != text.data() + text.size()) {
        return Error{"--background: '" + text + "' is not a colour of six hexadecimal digits, such as 101830"};
    }
    const auto channel = [value](unsigned shift) { return static_cast<float>((value >> shift) & 0xFFU) / 255.0F; };
    options.background = {channel(16), channel(8), channel(0), 1.0F};
    return {};
}

Result<void> parseSetting(const std::string& text, Options& options) {
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
    return {};
}

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

/// Where the frame's number goes in a file name: one %d, possibly with a width of one digit, as in %05d.
struct NumberPlace {
    std::size_t begin = 0;
    std::size_t end = 0; ///< Behind the d.
    std::size_t width = 0;
};

std::vector<NumberPlace> findNumberPlaces(const std::string& name) {
    std::vector<NumberPlace> places;
    for (auto begin = name.find('%'); begin != std::string::npos; begin = name.find('%', begin + 1)) {
        std::size_t end = begin + 1;
        if (end < name.size() && name[end] == '%') {
            begin = end; // Two of them are no place: who writes so means the sign itself.
            continue;
        }
        end += end < name.size() && name[end] == '0' ? 1 : 0;
        const bool hasWidth = end < name.size() && name[end] >= '1' && name[end] <= '9';
        const std::size_t width = hasWidth ? static_cast<std::size_t>(name[end++] - '0') : 0;
        if (end < name.size() && name[end] == 'd') {
            places.push_back({begin, end + 1, width});
        }
    }
    return places;
}

Result<void> tellKind(const RawOptions& raw, Options& options) {
    if (raw.listParameters || raw.particles) {
        options.kind = raw.listParameters ? OutputKind::ParameterList : OutputKind::ParticleTable;
        if (!raw.output.empty()) {
            return Error{std::string(raw.listParameters ? "--list-parameters" : "--particles") +
                         " prints to standard output and takes no OUTPUT"};
        }
        return {};
    }
    if (raw.output.empty()) {
        return Error{"no OUTPUT given: name a .png, .m4v or .mp4 file; --help tells more"};
    }
    options.output = raw.output;
    if (options.output.stem().string().starts_with('.') && !options.output.has_extension()) {
        return Error{"'" + raw.output + "' has no name before its ending"};
    }
    const std::string extension = lowered(options.output.extension().string());
    if (extension == ".m4v" || extension == ".mp4") {
        options.kind = OutputKind::Movie;
        return {};
    }
    if (extension != ".png") {
        return Error{"'" + raw.output +
                     "' ends in none of .png (picture, or frames with %05d in the name), .m4v, .mp4"};
    }
    const std::string name = options.output.filename().string();
    const auto places = findNumberPlaces(name).size();
    if (places > 1) {
        return Error{"'" + raw.output + "' has more than one place for the frame's number"};
    }
    options.kind = places == 1 ? OutputKind::Frames : OutputKind::Picture;
    return {};
}

Result<void> checkTogether(const Options& options) {
    if (options.fadeIn > 0.0 && options.fadeIn < shortestFadeIn) {
        return Error{"--fade-in takes at least " + brief(shortestFadeIn) +
                     " seconds: the rate climbs in steps of so long"};
    }
    const bool manyFrames = options.kind == OutputKind::Movie || options.kind == OutputKind::Frames;
    if (manyFrames && options.frameCount() < 1) {
        return Error{"--seconds " + brief(options.seconds) + " at --fps " + std::to_string(options.framesPerSecond) +
                     " is not even one frame"};
    }
    if (options.kind == OutputKind::Movie && std::max(options.width, options.height) > largestMovieSide) {
        return Error{"--size: a movie is at most " + std::to_string(largestMovieSide) + " pixels wide and high"};
    }
    return {};
}

void warnAboutIdleOptions(const CLI::App& app, Options& options) {
    const bool manyFrames = options.kind == OutputKind::Movie || options.kind == OutputKind::Frames;
    const bool oneMoment = options.kind == OutputKind::Picture || options.kind == OutputKind::ParticleTable;
    if (manyFrames && app.count("--at") > 0) {
        options.warnings.emplace_back("--at is for pictures and has no effect here; --from sets where a movie starts");
    }
    if (options.positions.position(Parameter::AnimateSpeed) == 0.0F) {
        options.warnings.emplace_back("animateSpeedSlider=0 stands still before the first rocket: nothing will show");
    }
    for (const char* name : {"--fps", "--seconds"}) {
        if (oneMoment && app.count(name) > 0) {
            options.warnings.push_back(std::string(name) + " is for movies and frames and has no effect here");
        }
    }
}

void declare(CLI::App& app, RawOptions& raw, Options& options) {
    app.add_option("OUTPUT", raw.output,
                   "What to make: NAME.png, NAME.m4v or NAME.mp4, or NAME%05d.png for numbered frames")
        ->type_name("");
    app.add_option("--size", raw.size, "Size of the stage in pixels (default 640x480)")->type_name("WxH");
    app.add_option("--at", raw.at, "Moment of a picture or of --particles (default 5)")->type_name("SECONDS");
    app.add_option("--from", raw.from, "Moment of the first frame (default 0)")->type_name("SECONDS");
    app.add_option("--seconds", raw.seconds, "Length of a movie or of frames (default 10)")->type_name("SECONDS");
    app.add_option("--fps", raw.framesPerSecond, "Frames per second, 1 to 240 (default 30)")->type_name("N");
    app.add_option("--seed", raw.seed, "Another number gives another show (default 1)")->type_name("N");
    app.add_option("--set", raw.settings, "Moves one of the fourteen parameters; may be given again for others")
        ->type_name("NAME=POSITION")
        ->allow_extra_args(false);
    app.add_option("--fade-in", raw.fadeIn, "Lets the rocket rate climb from --from on, for about so long")
        ->type_name("SECONDS");
    app.add_option("--background", raw.background, "Colour behind the show (default 000000)")->type_name("RRGGBB");
    app.add_option("--threads", raw.threads, "How many threads to use (default: all)")->type_name("N");
    app.add_flag("--quiet", options.quiet, "Only speaks of errors");
    app.add_flag("--particles", raw.particles,
                 "Prints a table (CSV) of all particles of drawing cells that live at --at, and makes no file");
    app.add_flag("--list-parameters", raw.listParameters, "Prints the parameters with ranges and reset positions");
    app.add_flag("--version", raw.version, "Prints the version");
    app.footer("Exit status: 0 done, 1 the output could not be written (no part of it is left), 2 the command line\n"
               "cannot be carried out, 130 interrupted. Numbered frames start at 0; those written before a failure "
               "stay.");
}

} // namespace

std::int64_t Options::frameCount() const {
    return starbloom::frameCount(seconds, framesPerSecond);
}

std::filesystem::path Options::framePath(std::int64_t frame) const {
    const std::string name = output.filename().string();
    const auto places = findNumberPlaces(name);
    if (places.empty()) {
        return output;
    }
    const NumberPlace& place = places.front();
    std::string number = std::to_string(frame);
    if (number.size() < place.width) {
        number.insert(0, place.width - number.size(), '0');
    }
    return output.parent_path() / (name.substr(0, place.begin) + number + name.substr(place.end));
}

Result<Options> parseOptions(std::span<const std::string> arguments) {
    CLI::App app("Renders a fireworks show without a screen.", "starbloom-render");
    Options options;
    RawOptions raw;
    declare(app, raw, options);
    try {
        // The library takes its arguments from the back.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
        options.kind = OutputKind::Message;
        options.message = app.help();
        return options;
    } catch (const CLI::ParseError& error) {
        return Error{error.what()};
    }
    if (raw.version) {
        options.kind = OutputKind::Message;
        options.message = "starbloom-render " STARBLOOM_VERSION "\n";
        return options;
    }
    if (auto numbers = parseNumbers(raw, options); !numbers) {
        return numbers.error();
    }
    if (auto size = parseSize(raw.size, options); !size) {
        return size.error();
    }
    if (auto background = parseBackground(raw.background, options); !background) {
        return background.error();
    }
    for (const std::string& setting : raw.settings) {
        if (auto set = parseSetting(setting, options); !set) {
            return set.error();
        }
    }
    if (auto kind = tellKind(raw, options); !kind) {
        return kind.error();
    }
    if (auto checked = checkTogether(options); !checked) {
        return checked.error();
    }
    warnAboutIdleOptions(app, options);
    return options;
}

} // namespace starbloom
