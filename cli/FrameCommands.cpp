// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FrameCommands.h"

#include "base/PendingFile.h"
#include "cli/FlashWatch.h"
#include "cli/FramePipeline.h"
#include "cli/Interruption.h"
#include "cli/Pictures.h"
#include "cli/Report.h"
#include "cli/ShowBuilder.h"
#include "export/clip/ClipWriter.h"
#include "export/movie/MovieWriter.h"

#include <cmath>
#include <string>
#include <unistd.h>

namespace starbloom {

namespace {

ExitStatus makeMovie(const Options& options, int threads, const FrameWatch& watch) {
    auto writer =
        MovieWriter::create(options.output, {options.width, options.height, options.framesPerSecond, threads});
    if (!writer) {
        return failed(BadInput, writer.error());
    }
    const auto add = [&](const RenderedFrame& frame) { return writer.value().addFrame(frame.image); };
    const auto added = runFrames(options, {.sink = add, .watch = watch});
    return finished(added && !interrupted() ? writer.value().finish() : added);
}

ExitStatus makeClip(const Options& options, int threads, const FrameWatch& watch) {
    constexpr double defaultQuality = 0.9;
    const ClipSettings settings{.width = options.width,
                                .height = options.height,
                                .rate = {options.framesPerSecond, 1},
                                .alpha = options.transparent ? options.alpha : AlphaMode::Opaque,
                                .quality = options.quality.value_or(defaultQuality),
                                .threads = threads};
    const auto destination = options.toStandardOutput ? ClipDestination(ClipStream{STDOUT_FILENO}) : options.output;
    if (options.toStandardOutput && ::isatty(STDOUT_FILENO) == 1) {
        return failed(BadInput, {"standard output is a terminal: lead it into a program or a file"});
    }
    auto writer = makeClipWriter(options.clipFormat, destination, settings);
    if (!writer) {
        return failed(options.toStandardOutput ? WriteFailed : BadInput, writer.error());
    }
    const auto add = [&](const RenderedFrame& frame) { return writer.value()->add(frame.image); };
    const auto added = runFrames(options, {.sink = add, .watch = watch});
    return finished(added && !interrupted() ? writer.value()->finish() : added);
}

ExitStatus makeNumberedFrames(const Options& options, const FrameWatch& watch) {
    // A folder that cannot be written to is told before any work is done.
    if (auto probe = PendingFile::create(options.framePath(options.frames().first)); !probe) {
        return failed(BadInput, probe.error());
    }
    const auto save = [&](const RenderedFrame& frame) {
        const auto picture = encodedPicture(frame.image, options, frame.note);
        return picture ? writeFile(options.framePath(frame.number), picture.value()) : Result<void>(picture.error());
    };
    const auto wanted = [&](std::int64_t frame) {
        std::error_code ignored; // What cannot be looked at is made, and the reason shows up then.
        return !options.skipsExisting || !std::filesystem::exists(options.framePath(frame), ignored);
    };
    return finished(runFrames(options, {.sink = save, .calls = SinkCalls::Together, .wanted = wanted, .watch = watch}));
}

/// A round of a few rockets can become another show than the one that was asked for.
void warnAboutLoop(const Options& options) {
    constexpr double noticeable = 0.2;
    const double rate = options.loop ? buildShow(options).loopRate : 1.0;
    if (std::abs(rate - 1.0) > noticeable) {
        reportWarning("--loop: a whole number of rockets starts in a round, so their rate is " +
                      std::to_string(std::lround(100.0 * rate)) +
                      " % of what it is without; longer rounds come closer");
    }
}

} // namespace

ExitStatus makeFrames(const Options& options, int threads) {
    warnAboutLoop(options);
    FlashWatch flashes(options);
    ExitStatus status = Done;
    if (options.kind == OutputKind::Movie) {
        status = makeMovie(options, threads, flashes.watch());
    } else if (options.kind == OutputKind::Clip) {
        status = makeClip(options, threads, flashes.watch());
    } else if (options.kind == OutputKind::Frames) {
        status = makeNumberedFrames(options, flashes.watch());
    } else {
        const auto drop = [](const RenderedFrame&) { return Result<void>(); };
        status = finished(runFrames(options, {.sink = drop, .watch = flashes.watch()}));
    }
    if (status != Done) {
        return status;
    }
    return flashes.report(options.toStandardOutput) ? Done : TooManyFlashes;
}

} // namespace starbloom
