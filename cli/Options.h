// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "base/Result.h"
#include "cli/Progress.h"
#include "engine/model/EmitterLayer.h"
#include "engine/panel/ParameterPanel.h"
#include "export/clip/ClipWriter.h"
#include "export/picture/PictureFormat.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace starbloom {

/// What comes out of a run.
enum class OutputKind {
    Picture,       ///< One picture file.
    Movie,         ///< H.264 in MPEG-4.
    Frames,        ///< Numbered picture files.
    ParticleTable, ///< CSV on standard output.
    ParameterList, ///< Text on standard output.
    Clip,          ///< Of another kind than Movie.
    Join,          ///< A movie of parts that are there.
    FlashCheck,    ///< Frames that are looked at and dropped.
    ShowFile,      ///< Nothing but the show file.
    Message,       ///< The text in Options::message on standard output: help, or the version.
};

/// Frames first .. end - 1 of a show, counted from 0.
struct FrameSpan {
    std::int64_t first = 0;
    std::int64_t end = 0;

    std::int64_t count() const { return end - first; }
};

/// A checked command line: every number lies within its range, and the output can be told from the rest.
struct Options {
    OutputKind kind = OutputKind::Picture;
    std::filesystem::path output; ///< For frames: a name with one %d in it, such as frame%05d.png.
    std::string message;
    std::filesystem::path showFile; ///< Where the show is written to; empty: nowhere.

    PictureFormat format = PictureFormat::Png; ///< Of pictures and frames.
    ClipFormat clipFormat = ClipFormat::ProRes;
    AlphaMode alpha = AlphaMode::Straight;    ///< Of what is transparent.
    bool toStandardOutput = false;            ///< A clip, instead of `output`.
    std::vector<std::filesystem::path> parts; ///< To be joined.
    bool checksFlashes = false;
    std::optional<double> quality; ///< 0.05 to 1; nothing: what the format usually has.
    bool transparent = false;
    bool onBlack = false; ///< Draws the light alone, for transparency or for adding up; the background stays out.

    double at = 5.0;              ///< Seconds into the show of a picture or particle table.
    std::optional<double> moment; ///< The same in the layer's own time, in place of `at`.
    double from = 0.0;            ///< Seconds into the show of the first frame.
    double seconds = 10.0;
    int framesPerSecond = 30;
    double shutter = 0.0;          ///< How much of a frame's time the shutter is open; 0: each frame is one moment.
    std::optional<FrameSpan> part; ///< Which frames of the whole to make; nothing: all.
    bool loop = false;             ///< The whole is one round of a show that repeats.
    bool skipsExisting = false;
    int width = 640; ///< Pixels.
    int height = 480;
    double pixelsPerPoint = 1.0;
    std::optional<Point> launchPoint; ///< In place of the one that the positions and the stage give.
    std::uint64_t seed = 1;
    double fadeIn = 0.0; ///< Seconds; 0 for none.
    Color background{0.0F, 0.0F, 0.0F, 1.0F};
    PositionPanel positions;
    int threads = 0;    ///< 0: as many as the machine has.
    bool quiet = false; ///< Leaves warnings out.
    ProgressStyle progress = ProgressStyle::Bar;

    /// Things that are probably a mistake but harm nothing, each one line.
    std::vector<std::string> warnings;

    /// Of the whole show.
    std::int64_t frameCount() const;

    /// Those to be made.
    FrameSpan frames() const { return part.value_or(FrameSpan{0, frameCount()}); }

    /// What is behind the light.
    Color drawnBackground() const;

    /// The stage that fills the picture, in points.
    Size stage() const;

    /// The file of one frame of a numbered series.
    std::filesystem::path framePath(std::int64_t frame) const;
};

/// Reads a command line, the program's own name not included. An Error is one line that says what is wrong and how it
/// should be.
Result<Options> parseOptions(std::span<const std::string> arguments);

} // namespace starbloom
