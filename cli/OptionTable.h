// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace starbloom {

/// The options of the command line in the order of their table.
enum class OptionId : std::size_t {
    Set,
    Seed,
    FadeIn,
    Background,
    Like,
    Show,
    Saved,
    SaveShow,
    Size,
    Scale,
    Quality,
    Transparent,
    Alpha,
    Format,
    At,
    From,
    Seconds,
    Fps,
    Shutter,
    Loop,
    Frames,
    SkipExisting,
    Join,
    CheckFlashes,
    Particles,
    ListParameters,
    Threads,
    Progress,
    Quiet,
    Help,
    Version,
};

/// What an option wants behind it. Shells complete by this.
enum class OptionValue {
    None,   ///< The option is a flag.
    Text,   ///< One word, a number for the most part.
    Choice, ///< One of a few words.
    Setting,
    File,
    Files, ///< One or more, up to the next option.
};

/// One option, once for all who speak of it: the parser, the help, the manual page and what shells complete.
struct OptionRow {
    OptionId id;
    std::string_view heading; ///< Under which help lists it, the same for neighbours.
    std::string_view name;    ///< With its dashes.
    OptionValue value;
    std::string_view valueName; ///< Stands for the value in help; for a Choice the words, separated by "|".
    std::string_view help;      ///< One phrase, without a full stop.
    std::string_view more;      ///< Further sentences for the manual page; may be empty.
};

/// All options, in the order in which help shows them.
std::span<const OptionRow> optionTable();

const OptionRow& row(OptionId id);

/// What stands before the options in a command line, and what it means.
inline constexpr std::string_view outputName = "OUTPUT";
inline constexpr std::string_view outputHelp =
    "What to make: a picture (.png .jpg .jp2 .tif .gif .bmp), numbered frames (NAME%05d.png and so on), a movie "
    "(.m4v .mp4), a clip for other programs (.mov .webm .webp .apng .gif .rgba .y4m), or - for standard output";

/// A status that the program ends with.
struct StatusRow {
    int status;
    std::string_view meaning;
};

std::span<const StatusRow> statusTable();

/// What is to be known of several options together: sentences under a heading.
struct TopicRow {
    std::string_view heading;
    std::string_view text;
};

std::span<const TopicRow> topicTable();

} // namespace starbloom
