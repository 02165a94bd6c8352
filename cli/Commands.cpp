// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

#include "base/PendingFile.h"
#include "cli/FramePipeline.h"
#include "cli/Interruption.h"
#include "cli/Report.h"
#include "cli/ShowFile.h"
#include "engine/model/FireworksTree.h"
#include "export/movie/MemoryCheck.h"
#include "export/movie/MovieWriter.h"
#include "export/picture/PictureEncoder.h"

#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <string>
#include <tuple>

namespace starbloom {

namespace {

/// What a picture takes for each pixel, itself included, while it is being encoded. Measured on shows of 4000 x 4000
/// pixels: JPEG 2000 takes 32 bytes with transparency, GIF and BMP 9, the others 6.
std::uint64_t bytesWhileEncoding(PictureFormat format) {
    return format == PictureFormat::Jpeg2000 ? 40 : 12;
}

/// Refuses sizes that would end in the middle for want of memory.
Result<void> checkMemory(const Options& options, int threads) {
    const auto pixels = static_cast<std::uint64_t>(options.width) * static_cast<std::uint64_t>(options.height);
    const auto inFlight = static_cast<std::uint64_t>(threads + 2);
    std::uint64_t perPixel = bytesWhileEncoding(options.format);
    if (options.kind == OutputKind::Movie) {
        // Frames on their way, and what an encoder keeps back: about a hundred frames of one and a half bytes.
        perPixel = 4 * inFlight + 150;
    } else if (options.kind == OutputKind::Frames) {
        perPixel *= inFlight;
    }
    perPixel += options.shutter > 0.0 ? 12 : 0;
    const auto available = availableMemory();
    const std::uint64_t needed = pixels * perPixel;
    if (!available || needed <= *available) {
        return {};
    }
    return Error{"--size: " + std::to_string(options.width) + "x" + std::to_string(options.height) + " needs about " +
                 std::to_string(needed >> 20U) + " MiB of memory, and " + std::to_string(*available >> 20U) +
                 " MiB are free"};
}

bool isThere(const std::filesystem::path& path) {
    std::error_code ignored; // What cannot be looked at is made, and the reason shows up then.
    return std::filesystem::exists(path, ignored);
}

bool isOneFile(OutputKind kind) {
    return kind == OutputKind::Picture || kind == OutputKind::Movie;
}

ExitStatus failed(ExitStatus status, const Error& error) {
    reportError(error.message);
    return status;
}

/// The end of a run that made or should have made files.
ExitStatus finished(const Result<void>& result) {
    if (!result) {
        return failed(WriteFailed, result.error());
    }
    if (interrupted()) {
        return failed(Interrupted, {"interrupted; nothing unfinished is left behind"});
    }
    return Done;
}

Result<std::vector<std::byte>> encoded(ImageBuffer& image, const Options& options, const ShowNote& note) {
    if (options.transparent) {
        lightToAlpha(image);
    }
    return encodePicture(image, {options.format, options.quality, options.transparent}, &note);
}

ExitStatus makePicture(const Options& options) {
    auto file = PendingFile::create(options.output);
    if (!file) {
        return failed(BadInput, file.error());
    }
    ImageBuffer image(options.width, options.height);
    FrameRenderer renderer(options);
    const double moment = renderer.pictureMoment();
    renderer.renderMoment(moment, image);
    const auto picture = encoded(image, options, renderer.noteAt(moment));
    if (!picture) {
        return failed(WriteFailed, picture.error());
    }
    if (interrupted()) {
        return finished({});
    }
    auto written = file.value().write(picture.value());
    return finished(written ? file.value().commit() : written);
}

ExitStatus makeMovie(const Options& options, int threads) {
    auto writer =
        MovieWriter::create(options.output, {options.width, options.height, options.framesPerSecond, threads});
    if (!writer) {
        return failed(BadInput, writer.error());
    }
    const auto added = runFrames(options, SinkCalls::InOrder,
                                 [&](const RenderedFrame& frame) { return writer.value().addFrame(frame.image); });
    return finished(added && !interrupted() ? writer.value().finish() : added);
}

ExitStatus makeFrames(const Options& options) {
    // A folder that cannot be written to is told before any work is done.
    if (auto probe = PendingFile::create(options.framePath(options.frames().first)); !probe) {
        return failed(BadInput, probe.error());
    }
    const auto save = [&](const RenderedFrame& frame) {
        const auto picture = encoded(frame.image, options, frame.note);
        return picture ? writeFile(options.framePath(frame.number), picture.value()) : Result<void>(picture.error());
    };
    const auto wanted = [&](std::int64_t frame) {
        return !options.skipsExisting || !isThere(options.framePath(frame));
    };
    return finished(runFrames(options, SinkCalls::Together, save, wanted));
}

template <typename Number>
void appendNumber(std::string& text, Number number) {
    std::array<char, 40> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text.append(digits.data(), end);
}

/// Standard output can fail too: a full disk, a closed pipe.
ExitStatus print(const std::string& text) {
    const bool complete = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return complete ? Done : failed(WriteFailed, {"cannot write to standard output"});
}

ExitStatus printParticles(const Options& options) {
    struct Row {
        int cell;
        double birth;
        SparkState state;
    };

    FrameRenderer renderer(options);
    const Simulation& simulation = renderer.particlesAtMoment(renderer.pictureMoment());
    std::vector<Row> rows;
    for (const SparkBatch& batch : simulation.sparks()) {
        for (std::size_t i = 0; i < batch.size(); ++i) {
            if (const auto state = batch.stateAt(i, simulation.time())) {
                rows.push_back({batch.law().cell, batch.time[i], *state});
            }
        }
    }
    std::ranges::sort(rows, {},
                      [](const Row& row) { return std::tuple(row.cell, row.birth, row.state.x, row.state.y); });
    std::string text = "cell,birth,age,x,y,scale,rotation,r,g,b,a\n";
    for (const auto& [cell, birth, state] : rows) {
        text += fireworksCellLabels.at(static_cast<std::size_t>(cell));
        text += ',';
        appendNumber(text, birth);
        for (const float value : {state.age, state.x, state.y, state.scale, state.rotation, state.color.red,
                                  state.color.green, state.color.blue, state.color.alpha}) {
            text += ',';
            appendNumber(text, value);
        }
        text += '\n';
    }
    return print(text);
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

ExitStatus printParameters() {
    std::string text;
    std::array<char, 256> line{};
    const auto addLine = [&](const char* name, const char* range, const char* reset, const std::string& effect) {
        std::snprintf(line.data(), line.size(), "%-22s  %-10s  %5s  ", name, range, reset);
        text += line.data() + effect + "\n";
    };
    addLine("NAME", "RANGE", "RESET", "WHAT IT DOES");
    for (const ParameterRow& row : parameterTable) {
        std::array<char, 32> range{};
        std::snprintf(range.data(), range.size(), "%g..%g", static_cast<double>(row.minimum),
                      static_cast<double>(row.maximum));
        addLine(std::string(row.name).c_str(), range.data(), std::to_string(row.resetPosition).c_str(),
                std::string(row.effect));
    }
    return print(text);
}

} // namespace

ExitStatus runCommand(const Options& options) {
    if (!options.quiet) {
        for (const std::string& warning : options.warnings) {
            reportWarning(warning);
        }
    }
    if (options.skipsExisting && isOneFile(options.kind) && isThere(options.output)) {
        return Done;
    }
    const int threads = options.threads > 0 ? options.threads : oneapi::tbb::info::default_concurrency();
    if (options.kind == OutputKind::Message) {
        return print(options.message);
    }
    if (options.kind == OutputKind::ParameterList) {
        return printParameters();
    }
    if (!options.showFile.empty()) {
        if (const ExitStatus written = writeShowFile(options); written != Done) {
            return written;
        }
    }
    if (options.kind == OutputKind::Nothing) {
        return Done;
    }
    if (auto fits = checkMemory(options, threads); !fits) {
        return failed(BadInput, fits.error());
    }
    // The limit lets an arena have more threads than the machine has cores, which by itself it would not.
    const oneapi::tbb::global_control limit(oneapi::tbb::global_control::max_allowed_parallelism,
                                            static_cast<std::size_t>(threads));
    oneapi::tbb::task_arena arena(threads);
    return arena.execute([&] {
        switch (options.kind) {
        case OutputKind::Movie:
            return makeMovie(options, threads);
        case OutputKind::Frames:
            return makeFrames(options);
        case OutputKind::ParticleTable:
            return printParticles(options);
        default:
            return makePicture(options);
        }
    });
}

} // namespace starbloom
