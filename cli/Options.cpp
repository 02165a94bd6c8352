// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Options.h"

#include "cli/LikePicture.h"
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
    std::string quality = "100";
    std::string like;
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
    int percent = 100;
    if (auto quality = parseInRange("--quality", raw.quality, 5, 100, percent); !quality) {
        return quality;
    }
    options.quality = percent / 100.0;
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
    if (parameter->parameter == Parameter::RocketHeight) {
        options.launchPoint.reset();
    }
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

/// Both usual endings of JPEG and TIFF are understood.
std::optional<PictureFormat> formatOf(const std::string& extension) {
    if (extension == ".jpeg") {
        return PictureFormat::Jpeg;
    }
    if (extension == ".tiff") {
        return PictureFormat::Tiff;
    }
    for (const PictureFormatRow& each : pictureFormats) {
        if (extension == "." + std::string(each.extension)) {
            return each.format;
        }
    }
    return std::nullopt;
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
        return Error{"no OUTPUT given: name a picture (.png, .jpg, ...) or a movie (.m4v, .mp4); --help tells more"};
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
    const auto format = formatOf(extension);
    if (!format) {
        return Error{"'" + raw.output +
                     "' ends in none of .bmp, .gif, .jpg, .jp2, .png, .tif (picture, or frames with %05d in the name), "
                     ".m4v, .mp4"};
    }
    options.format = *format;
    const std::string name = options.output.filename().string();
    const auto places = findNumberPlaces(name).size();
    if (places > 1) {
        return Error{"'" + raw.output + "' has more than one place for the frame's number"};
    }
    options.kind = places == 1 ? OutputKind::Frames : OutputKind::Picture;
    return {};
}

/// Options that only some kinds of picture know: refused elsewhere, as whoever asks for transparency wants no less.
Result<void> checkPictureOptions(const CLI::App& app, const Options& options) {
    const bool isPicture = options.kind == OutputKind::Picture || options.kind == OutputKind::Frames;
    if (app.count("--quality") > 0 && !(isPicture && row(options.format).hasQuality)) {
        return Error{"--quality is for JPEG (.jpg) and JPEG 2000 (.jp2) alone"};
    }
    if (!options.transparent) {
        return {};
    }
    if (!(isPicture && row(options.format).hasTransparency)) {
        return Error{"--transparent is for PNG (.png), TIFF (.tif) and JPEG 2000 (.jp2) alone"};
    }
    if (app.count("--background") > 0) {
        return Error{"--transparent leaves the background out and does not go with --background"};
    }
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
    if (options.positions.position(Parameter::AnimateSpeed) == 0.0F && !(oneMoment && options.moment)) {
        options.warnings.emplace_back("animateSpeedSlider=0 stands still before the first rocket: nothing will show");
    }
    for (const char* name : {"--fps", "--seconds"}) {
        if (oneMoment && app.count(name) > 0) {
            options.warnings.push_back(std::string(name) + " is for movies and frames and has no effect here");
        }
    }
}

constexpr const char* footer =
    "--like takes the positions, seed, moment, size and background from PICTURE; options that are given besides it\n"
    "count more. At another --size the same sparks are drawn larger or smaller, nothing is cut off: a wider picture\n"
    "shows more on both sides, a taller one more above. A movie or frames start at --from, not at PICTURE's moment.\n\n"
    "In an editor, a picture made with --transparent glows on any layer below it in the normal mode (over). For light\n"
    "that adds up, as in the show itself, make one without --transparent, on black, and set its layer to add.\n\n"
    "Exit status: 0 done, 1 the output could not be written (no part of it is left), 2 the command line\n"
    "cannot be carried out, 130 interrupted. Numbered frames start at 0; those written before a failure stay.";

void declare(CLI::App& app, RawOptions& raw, Options& options) {
    app.add_option("OUTPUT", raw.output,
                   "What to make: a picture (.png .jpg .jp2 .tif .gif .bmp), numbered frames (NAME%05d.png and so on), "
                   "or a movie (.m4v .mp4)")
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
    app.add_option("--like", raw.like, "Renders the show that another picture of this program was taken from")
        ->type_name("PICTURE");
    app.add_option("--quality", raw.quality, "Of JPEG and JPEG 2000, 5 to 100 (default 100)")->type_name("PERCENT");
    app.add_flag("--transparent", options.transparent,
                 "Light on nothing: PNG, TIFF or JPEG 2000 with alpha, no background");
    app.add_option("--threads", raw.threads, "How many threads to use (default: all)")->type_name("N");
    app.add_flag("--quiet", options.quiet, "Only speaks of errors");
    app.add_flag("--particles", raw.particles,
                 "Prints a table (CSV) of all particles of drawing cells that live at --at, and makes no file");
    app.add_flag("--list-parameters", raw.listParameters, "Prints the parameters with ranges and reset positions");
    app.add_flag("--version", raw.version, "Prints the version");
    app.footer(footer);
}

/// Looks closer at what was typed. A picture's show comes before what is given besides it.
Result<void> understand(const CLI::App& app, const RawOptions& raw, Options& options) {
    if (auto numbers = parseNumbers(raw, options); !numbers) {
        return numbers;
    }
    if (auto size = parseSize(raw.size, options); !size) {
        return size;
    }
    if (auto background = parseBackground(raw.background, options); !background) {
        return background;
    }
    if (app.count("--like") > 0) {
        const LikeKeeps keeps{app.count("--size") > 0, app.count("--seed") > 0, app.count("--at") > 0,
                              app.count("--background") > 0};
        if (auto like = showLike(raw.like, keeps, options); !like) {
            return like;
        }
    }
    for (const std::string& setting : raw.settings) {
        if (auto set = parseSetting(setting, options); !set) {
            return set;
        }
    }
    if (auto kind = tellKind(raw, options); !kind) {
        return kind;
    }
    if (auto checked = checkTogether(options); !checked) {
        return checked;
    }
    if (auto checked = checkPictureOptions(app, options); !checked) {
        return checked;
    }
    if (options.transparent) {
        options.background = {0.0F, 0.0F, 0.0F, 1.0F};
    }
    return {};
}

} // namespace

std::int64_t Options::frameCount() const {
    return starbloom::frameCount(seconds, framesPerSecond);
}

Size Options::stage() const {
    return {width / pixelsPerPoint, height / pixelsPerPoint};
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
    if (auto understood = understand(app, raw, options); !understood) {
        return understood.error();
    }
    warnAboutIdleOptions(app, options);
    return options;
}

} // namespace starbloom
