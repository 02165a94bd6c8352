// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

#include "base/PendingFile.h"
#include "cli/FrameCommands.h"
#include "cli/Interruption.h"
#include "cli/MemoryNeeds.h"
#include "cli/Pictures.h"
#include "cli/Report.h"
#include "cli/ShowFile.h"
#include "cli/Tables.h"
#include "export/clip/MovieJoiner.h"

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/task_arena.h>

#include <cstdio>
#include <span>
#include <string>

namespace starbloom {

namespace {

bool isThere(const std::filesystem::path& path) {
    std::error_code ignored; // What cannot be looked at is made, and the reason shows up then.
    return std::filesystem::exists(path, ignored);
}

/// Whether there is one file that is made, and is there already.
bool isMade(const Options& options) {
    const bool oneFile = options.kind == OutputKind::Picture || options.kind == OutputKind::Movie ||
                         options.kind == OutputKind::Join ||
                         (options.kind == OutputKind::Clip && !options.toStandardOutput);
    return oneFile && isThere(options.output);
}

/// Standard output can fail too: a full disk, a closed pipe.
ExitStatus print(const std::string& text) {
    const bool complete = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return complete ? Done : failed(WriteFailed, {"cannot write to standard output"});
}

ExitStatus writeShowFile(const Options& options) {
    auto file = PendingFile::create(options.showFile);
    if (!file) {
        return failed(BadInput, file.error());
    }
    const std::string text = showFileText(options);
    auto written = file.value().write(std::as_bytes(std::span(text)));
    return finished(written ? file.value().commit() : written);
}

ExitStatus joinParts(const Options& options) {
    if (auto probe = PendingFile::create(options.output); !probe) {
        return failed(BadInput, probe.error());
    }
    bool refused = false;
    const auto joined = joinMovies(
        options.parts, options.output, [] { return !interrupted(); }, &refused);
    if (refused && !joined) {
        return failed(BadInput, joined.error());
    }
    return finished(joined ? Result<void>() : joined.error());
}

ExitStatus render(const Options& options, int threads) {
    switch (options.kind) {
    case OutputKind::Movie:
    case OutputKind::Clip:
    case OutputKind::Frames:
    case OutputKind::FlashCheck:
        return makeFrames(options, threads);
    case OutputKind::ParticleTable:
        return print(particleTable(options));
    default:
        return makePicture(options);
    }
}

ExitStatus renderInArena(const Options& options) {
    const int threads = options.threads > 0 ? options.threads : oneapi::tbb::info::default_concurrency();
    if (auto fits = checkMemory(options, threads); !fits) {
        return failed(BadInput, fits.error());
    }
    // The limit lets an arena have more threads than the machine has cores, which by itself it would not.
    const oneapi::tbb::global_control limit(oneapi::tbb::global_control::max_allowed_parallelism,
                                            static_cast<std::size_t>(threads));
    oneapi::tbb::task_arena arena(threads);
    return arena.execute([&] { return render(options, threads); });
}

} // namespace

ExitStatus runCommand(const Options& options) {
    if (options.quiet) {
        muteWarnings();
    }
    for (const std::string& warning : options.warnings) {
        reportWarning(warning);
    }
    if (!options.showFile.empty()) {
        if (const ExitStatus written = writeShowFile(options); written != Done) {
            return written;
        }
    }
    if (options.skipsExisting && isMade(options)) {
        return Done;
    }
    switch (options.kind) {
    case OutputKind::Message:
        return print(options.message);
    case OutputKind::ParameterList:
        return print(parameterList());
    case OutputKind::Join:
        return joinParts(options);
    case OutputKind::ShowFile:
        return Done; // Made already.
    default:
        return renderInArena(options);
    }
}

} // namespace starbloom
