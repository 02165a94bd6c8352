// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OptionTable.h"

#include <array>

namespace starbloom {

namespace {

constexpr std::string_view show = "Show";
constexpr std::string_view picture = "Picture";
constexpr std::string_view time = "Time";
constexpr std::string_view parts = "Parts of a show";
constexpr std::string_view tables = "Tables and checks";
constexpr std::string_view program = "Program";

using enum OptionValue;

constexpr auto options = std::to_array<OptionRow>({
    {OptionId::Set, show, "--set", Setting, "NAME=POSITION",
     "Moves one of the fourteen parameters; may be given again for others",
     "--list-parameters shows their names and ranges."},
    {OptionId::Seed, show, "--seed", Text, "N", "Another number gives another show (default 1)", ""},
    {OptionId::FadeIn, show, "--fade-in", Text, "SECONDS",
     "Lets the rocket rate climb from --from on, for about so long", ""},
    {OptionId::Background, show, "--background", Text, "RRGGBB", "Colour behind the show (default 000000)", ""},
    {OptionId::Like, show, "--like", File, "PICTURE",
     "Renders the show that another picture of this program was taken from",
     "Takes the positions, seed, moment, size and background from PICTURE; options that are given besides it "
     "count more. At another --size the same sparks are drawn larger or smaller, nothing is cut off: a wider "
     "picture shows more on both sides, a taller one more above. A movie or frames start at --from, not at "
     "PICTURE's moment."},
    {OptionId::Show, show, "--show", File, "FILE", "Renders the show that --save-show has written to FILE",
     "Takes the positions, seed, size, scale, background and fade-in from FILE; options that are given besides it "
     "count more, as with --like."},
    {OptionId::Saved, show, "--saved", None, "",
     "Takes the positions and the background that the application has saved", ""},
    {OptionId::SaveShow, show, "--save-show", File, "FILE", "Writes the whole show to FILE (JSON), and needs no OUTPUT",
     "With an OUTPUT both are made, FILE first."},
    {OptionId::Size, picture, "--size", Text, "WxH", "Size of the picture in pixels (default 640x480)",
     "A picture is up to 65536 pixels wide and high, a movie up to 16384, each kind of clip as far as it goes, "
     "as memory allows. A .jpg is at most 65500, a .gif 65535. Sides that are odd grow by a pixel in .m4v, .mp4 and "
     ".y4m."},
    {OptionId::Scale, picture, "--scale", Text, "N", "Pixels for each point of the stage, 0.01 to 100 (default 1)",
     "Everything is drawn so much larger, and finer. With --size the picture keeps that size and shows a stage "
     "of SIZE divided by N points; without it the stage stays and the picture grows."},
    {OptionId::Quality, picture, "--quality", Text, "PERCENT",
     "5 to 100, of .jpg and .jp2 (default 100) and of .webm and .webp (default 90)", "100 makes a .webp without loss."},
    {OptionId::Transparent, picture, "--transparent", None, "",
     "Light on nothing, no background: .png .tif .jp2 .mov .webm .webp .apng",
     "Alpha is the brightest channel of the light. In an editor, such a picture glows on any layer below it in the "
     "normal mode (over). For light that adds "
     "up, as in the show itself, use --alpha black, and set its layer to add."},
    {OptionId::Alpha, picture, "--alpha", Choice, "straight|premultiplied|black",
     "How light on nothing is stored (default straight)",
     "With straight, colours are divided by alpha, for programs that multiply them by it again, as browsers and most "
     "editors do. With premultiplied (.mov, .webm and raw RGBA), colours stay as they are drawn, for programs that are "
     "told that they are multiplied by alpha already. With black there is no alpha, and the light lies on black, for a "
     "layer that adds."},
    {OptionId::Format, picture, "--format", Choice, "rgba|y4m", "What goes to standard output, with OUTPUT -",
     "With rgba these are the pixels and nothing else, four bytes each, row by row, frame by frame; with y4m it is a "
     "stream that encoders read, 4:2:0 and without alpha. A file that ends in .rgba or .y4m has the same in it."},
    {OptionId::At, time, "--at", Text, "SECONDS", "Moment of a picture or of --particles (default 5)", ""},
    {OptionId::From, time, "--from", Text, "SECONDS", "Moment of the first frame (default 0)", ""},
    {OptionId::Seconds, time, "--seconds", Text, "SECONDS", "Length of a movie or of frames (default 10)", ""},
    {OptionId::Fps, time, "--fps", Text, "N", "Frames per second, 1 to 240 (default 30)", ""},
    {OptionId::Shutter, time, "--shutter", Text, "FRACTION",
     "Blurs what moves: how much of a frame's time the shutter is open, 0 to 1 (default 0)",
     "Each frame is the mean, in light, of as many moments as it takes for no spark to be seen twice along its "
     "way: the slower the rate and the faster the sparks, the more, and the longer it takes. 0.5 looks as film does. A "
     "picture takes its frame's time from --fps."},
    {OptionId::Loop, time, "--loop", None, "", "Makes a movie or frames that can be played round and round",
     "The first frame follows the last as any frame follows the one before. A round lasts --seconds; the rocket "
     "rate gives way, so that a whole number of rockets starts in it: a little in a long round, more in a short or "
     "slow one."},
    {OptionId::Frames, parts, "--frames", Text, "A:B", "Makes only frames A to B-1 of the whole, counted from 0",
     "Each is the very frame that it is in the whole, and numbered files keep their numbers. A: goes to the "
     "end, :B starts with the first. Without --seconds and --loop, B may lie beyond the default length."},
    {OptionId::SkipExisting, parts, "--skip-existing", None, "",
     "Leaves alone what is there already, and makes the rest",
     "Files appear whole, so one that is there is complete; whether it is of the same show is not looked at."},
    {OptionId::Join, parts, "--join", Files, "PART...", "Makes one movie OUTPUT of parts, without encoding again",
     "The parts are .m4v, .mp4, .mov or .webm files of this program, made with the same settings; write OUTPUT before "
     "--join. The movie has the frames of the parts, one after the other."},
    {OptionId::CheckFlashes, tables, "--check-flashes", None, "",
     "Tells whether the frames could cause seizures, and needs no OUTPUT",
     "Counts general and red flashes as the W3C's Web Content Accessibility Guidelines do (success criterion 2.3.1) "
     "and prints the worst second of each; with more than three in a second the exit status is 3, and OUTPUT is made "
     "all the same. A whole --loop is looked at as it is played, round after round."},
    {OptionId::Particles, tables, "--particles", None, "",
     "Prints a table (CSV) of all particles of drawing cells that live at --at, and makes no file", ""},
    {OptionId::ListParameters, tables, "--list-parameters", None, "",
     "Prints the parameters with ranges and reset positions", ""},
    {OptionId::Threads, program, "--threads", Text, "N", "How many threads to use (default: all)",
     "Their number changes no pixel that is drawn. Of movies the encoder may write other bytes."},
    {OptionId::Progress, program, "--progress", Choice, "bar|json|none",
     "How to tell of progress on standard error (default: a bar on a terminal)",
     "With json everything on standard error is one JSON object a line. Each has an \"event\": \"progress\" with "
     "\"done\" and \"total\" frames, \"seconds\" so far and \"secondsLeft\", at most ten times a second; \"warning\" "
     "and \"error\" with a \"message\"; \"flashes\" with what --check-flashes found; \"end\" with the exit \"status\", "
     "as the last line."},
    {OptionId::Quiet, program, "--quiet", None, "", "Only speaks of errors", ""},
    {OptionId::Help, program, "--help", None, "", "Prints this help", ""},
    {OptionId::Version, program, "--version", None, "", "Prints the version", ""},
});

constexpr std::array statuses{
    StatusRow{0, "done"},
    StatusRow{1, "the output could not be written; no part of it is left, but numbered frames written before stay"},
    StatusRow{2, "the command line cannot be carried out"},
    StatusRow{3, "all is made, but --check-flashes found more than three flashes in a second"},
    StatusRow{130, "interrupted; nothing unfinished is left"},
};

constexpr std::array topics{
    TopicRow{"Moving GIF", "A .gif is a picture, unless --seconds, --frames or --loop is given: then it moves."},
    TopicRow{"Numbered frames", "They start at 0, and each is the very picture that --at gives for its moment."},
};

} // namespace

std::span<const OptionRow> optionTable() {
    return options;
}

const OptionRow& row(OptionId id) {
    for (const OptionRow& each : options) {
        if (each.id == id) {
            return each;
        }
    }
    return options.front(); // Every id has its row; a test says so.
}

std::span<const StatusRow> statusTable() {
    return statuses;
}

std::span<const TopicRow> topicTable() {
    return topics;
}

} // namespace starbloom
