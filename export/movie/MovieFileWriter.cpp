// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieFileWriter.h"

#include "base/Log.h"
#include "export/movie/MovieRecovery.h"
#include "export/movie/MovieWriter.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <string>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace starbloom {

namespace {

/// Frames from one sync to the next: about a second's work for a movie of high definition.
constexpr std::int64_t framesPerSync = 60;

/// A second way to a file that someone else writes, to bring it to the disk.
class SyncedFile {
public:
    explicit SyncedFile(const std::filesystem::path& path)
        : m_descriptor(::open(path.c_str(), O_WRONLY | O_CLOEXEC)) {}

    ~SyncedFile() {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }

    SyncedFile(const SyncedFile&) = delete;
    SyncedFile& operator=(const SyncedFile&) = delete;

    /// A failure shows up where it matters: when the whole movie is synced at the end.
    void sync() const { ::fdatasync(m_descriptor); }

private:
    int m_descriptor;
};

/// Lays a frame into the bottom left corner of a canvas of the movie's size.
void layInto(ImageBuffer& canvas, const ImageBuffer& frame) {
    std::ranges::fill(canvas.bytes(), std::uint8_t{0});
    const int rows = std::min(canvas.height(), frame.height());
    const std::size_t bytes = std::min(canvas.bytesPerRow(), frame.bytesPerRow());
    for (int row = 1; row <= rows; ++row) {
        std::memcpy(canvas.row(canvas.height() - row), frame.row(frame.height() - row), bytes);
    }
}

/// Names the movie in the journal, if it can be.
void nameInJournal(const MovieJob& job, const MovieWriter& writer, std::optional<MovieJournal>& journal) {
    if (job.journal.empty()) {
        return;
    }
    auto begun =
        MovieJournal::begin({job.target, writer.partPath(), writer.finalPath(), job.framesPerSecond, job.journal});
    if (begun) {
        journal.emplace(std::move(begun).value());
    } else {
        log(LogLevel::Warning, "export", "a movie that is cut off could not be found again: " + begun.error().message);
    }
}

} // namespace

MovieFileWriter::MovieFileWriter(MovieJob job, MovieProgressCall progress, MovieFinishedCall finished)
    : m_job(std::move(job))
    , m_progress(std::move(progress))
    , m_finished(std::move(finished))
    , m_thread([this] { work(); }) {}

MovieFileWriter::~MovieFileWriter() {
    m_aborted = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void MovieFileWriter::wait() {
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void MovieFileWriter::work() {
    const auto writeOrFail = [this]() -> Result<std::optional<WrittenMovie>> {
        try {
            return write();
        } catch (const std::bad_alloc&) {
            return Error{"cannot write " + m_job.target.string() + ": there is not enough memory"};
        }
    };
    auto result = writeOrFail();
    m_job.frames.reset();
    if (!result && m_aborted) {
        result = std::optional<WrittenMovie>();
    }
    m_finished(result);
}

Result<std::optional<WrittenMovie>> MovieFileWriter::write() {
    const std::int64_t total = m_job.frames->count();
    ImageBuffer frame;
    if (!m_job.frames->takeFirst(frame)) {
        return Error{"cannot write " + m_job.target.string() + ": the movie has no frames"};
    }
    std::optional<SyncedFile> part;
    const auto frameWritten = [&](std::int64_t written) {
        m_progress(written, total);
        if (part && written % framesPerSync == 0) {
            part->sync();
        }
        return !m_aborted;
    };
    const MovieFormat format{frame.width(), frame.height(), m_job.framesPerSecond, encoderThreads};
    std::optional<MovieJournal> journal; // Goes after what it names.
    auto writer = MovieWriter::create(m_job.target, format, {.survivesKill = true, .frameWritten = frameWritten});
    if (!writer) {
        return writer.error();
    }
    part.emplace(writer.value().partPath());
    nameInJournal(m_job, writer.value(), journal);

    ImageBuffer canvas;
    std::int64_t added = 0;
    do {
        const bool fits = frame.width() == format.width && frame.height() == format.height;
        if (!fits) {
            canvas = ImageBuffer(format.width, format.height);
            layInto(canvas, frame);
        }
        if (auto done = writer.value().addFrame(fits ? frame : canvas); !done) {
            return done.error();
        }
        ++added;
        if (m_aborted) {
            return std::optional<WrittenMovie>();
        }
    } while (!m_ending && m_job.frames->takeFirst(frame));
    if (auto done = writer.value().finish(); !done) {
        return done.error();
    }
    return std::optional(WrittenMovie{m_job.target, added, static_cast<double>(added) / m_job.framesPerSecond});
}

} // namespace starbloom
