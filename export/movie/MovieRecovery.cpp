// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieRecovery.h"

#include "base/Log.h"
#include "base/PendingFile.h"
#include "base/WholeFile.h"
#include "export/movie/MovieContainer.h"

#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

constexpr std::string_view heading = "starbloom movie 1";
constexpr std::size_t largestJournal = 64 * 1024;
constexpr int journalCount = 10;

std::string reason(int errorNumber) {
    return std::error_code(errorNumber, std::generic_category()).message();
}

std::filesystem::path journalPath(const std::filesystem::path& first, int number) {
    auto path = first;
    return number == 0 ? path : path += "." + std::to_string(number);
}

void removeFile(const std::filesystem::path& path) {
    ::unlink(path.c_str());
}

/// All but the journal; fails with the first file that is still there.
Result<void> removeHiddenFiles(const UnfinishedMovie& movie) {
    for (const std::filesystem::path* path : {&movie.part, &movie.pending}) {
        if (::unlink(path->c_str()) != 0 && errno != ENOENT) {
            return Error{"cannot remove " + path->string() + ": " + reason(errno)};
        }
    }
    return {};
}

bool fileExists(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

/// Fields end with a zero, the one character that no path has.
std::string textOf(const UnfinishedMovie& movie) {
    std::string text;
    for (const std::string& field : {std::string(heading), movie.target.string(), movie.part.string(),
                                     movie.pending.string(), std::to_string(movie.framesPerSecond)}) {
        text += field;
        text += '\0';
    }
    return text;
}

/// Whether a path can be one of PendingFile's beside the target.
bool isHiddenFileBeside(const std::filesystem::path& target, const std::filesystem::path& path) {
    const std::string name = path.filename().string();
    return path.parent_path() == target.parent_path() && name.starts_with(".starbloom.") && name.ends_with(".part");
}

std::optional<UnfinishedMovie> parse(std::string_view text) {
    std::vector<std::string> fields;
    for (std::size_t end = text.find('\0'); end != std::string_view::npos; end = text.find('\0')) {
        fields.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    if (fields.size() != 5 || fields[0] != heading) {
        return std::nullopt;
    }
    UnfinishedMovie movie{fields[1], fields[2], fields[3], 0, {}};
    std::from_chars(fields[4].data(), fields[4].data() + fields[4].size(), movie.framesPerSecond);
    if (!movie.target.is_absolute() || !isHiddenFileBeside(movie.target, movie.part) ||
        !isHiddenFileBeside(movie.target, movie.pending) || movie.framesPerSecond < 1) {
        return std::nullopt;
    }
    return movie;
}

/// Whether a running program holds the journal.
bool isHeld(const std::filesystem::path& journal) {
    const int descriptor = ::open(journal.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool held = ::flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(descriptor);
    return held;
}

bool holdsFrames(const UnfinishedMovie& movie) {
    auto reader = MovieReader::open(movie.part, movie.framesPerSecond);
    return reader && reader.value().next() != nullptr;
}

std::optional<UnfinishedMovie> readJournal(const std::filesystem::path& path) {
    const auto bytes = readWholeFile(path, largestJournal);
    if (!bytes || !bytes.value()) {
        return std::nullopt;
    }
    auto movie = parse({reinterpret_cast<const char*>(bytes.value()->data()), bytes.value()->size()});
    if (!movie) {
        log(LogLevel::Warning, "export", path.string() + " names no movie and is removed");
        removeFile(path);
        return std::nullopt;
    }
    movie->journal = path;
    if (!fileExists(movie->target.parent_path())) {
        return std::nullopt; // a disk that is not plugged in
    }
    const bool wasSaved = !fileExists(movie->pending);
    if (wasSaved || !holdsFrames(*movie)) {
        [[maybe_unused]] const auto ignored = discardInterruptedMovie(*movie); // Or at a later launch.
        return std::nullopt;
    }
    return movie;
}

/// The names that a recovered movie may get, the first one for 1.
std::filesystem::path recoveredName(const std::filesystem::path& target, int number) {
    const std::string mark = number == 1 ? " (recovered)" : " (recovered " + std::to_string(number) + ")";
    // A name that is as long as names may be has no room for the mark.
    const std::string stem = target.stem().string();
    return target.parent_path() / ((stem.size() > 220 ? "Movie" : stem) + mark + ".m4v");
}

Error cannotRecover(const UnfinishedMovie& movie, const std::string& why) {
    return Error{"cannot recover " + movie.target.string() + ": " + why};
}

} // namespace

Result<MovieJournal> MovieJournal::begin(UnfinishedMovie movie) {
    std::error_code ignored;
    for (std::filesystem::path* path : {&movie.target, &movie.part, &movie.pending}) {
        *path = std::filesystem::absolute(*path, ignored);
    }
    for (int number = 0; number < journalCount; ++number) {
        const auto path = journalPath(movie.journal, number);
        const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor < 0 && errno == EEXIST) {
            continue;
        }
        if (descriptor < 0) {
            return Error{"cannot write " + path.string() + ": " + reason(errno)};
        }
        movie.journal = path;
        MovieJournal journal(movie, descriptor);
        // Some file systems have no locks; then two programs at once could take each other's movie for interrupted.
        ::flock(descriptor, LOCK_EX | LOCK_NB);
        const std::string text = textOf(movie);
        if (::write(descriptor, text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
            ::fsync(descriptor) != 0) {
            const int error = errno;
            removeFile(path);
            return Error{"cannot write " + path.string() + ": " + reason(error)};
        }
        return journal;
    }
    return Error{"cannot write " + movie.journal.string() + ": " + reason(EEXIST)};
}

MovieJournal::MovieJournal(UnfinishedMovie movie, int descriptor)
    : m_movie(std::move(movie))
    , m_descriptor(descriptor) {}

MovieJournal::MovieJournal(MovieJournal&& other) noexcept
    : m_movie(std::move(other.m_movie))
    , m_descriptor(std::exchange(other.m_descriptor, -1)) {}

MovieJournal::~MovieJournal() {
    if (m_descriptor >= 0) {
        if (!fileExists(m_movie.part) && !fileExists(m_movie.pending)) {
            removeFile(m_movie.journal);
        }
        ::close(m_descriptor);
    }
}

std::optional<UnfinishedMovie> findInterruptedMovie(const std::filesystem::path& journal) {
    for (int number = 0; number < journalCount; ++number) {
        const auto path = journalPath(journal, number);
        if (!isHeld(path)) {
            if (auto movie = readJournal(path)) {
                return movie;
            }
        }
    }
    return std::nullopt;
}

Result<RecoveredMovie> recoverMovie(const UnfinishedMovie& movie, const std::function<bool()>& goesOn) {
    auto file = PendingFile::createBeside(recoveredName(movie.target, 1));
    if (!file) {
        return file.error();
    }
    // A regular file that was begun is of no use, and may take the room for this one. Its being there still tells that
    // the movie was not saved.
    std::error_code ignored;
    if (std::filesystem::is_regular_file(std::filesystem::symlink_status(movie.pending, ignored))) {
        std::filesystem::resize_file(movie.pending, 0, ignored);
    }
    const auto frames = copyMovie(movie.part, file.value().temporaryPath(), movie.framesPerSecond, goesOn);
    if (!frames) {
        return cannotRecover(movie, frames.error().message);
    }
    if (frames.value() == 0) {
        return cannotRecover(movie, "it has no whole frame");
    }
    const double seconds = static_cast<double>(frames.value()) / movie.framesPerSecond;
    for (int number = 1;; ++number) {
        const auto path = recoveredName(movie.target, number);
        const auto committed = file.value().commitAs(path);
        if (!committed) {
            return committed.error();
        }
        if (committed.value()) {
            if (const auto discarded = discardInterruptedMovie(movie); !discarded) {
                log(LogLevel::Warning, "export", discarded.error().message);
            }
            return RecoveredMovie{path, frames.value(), seconds};
        }
    }
}

Result<void> discardInterruptedMovie(const UnfinishedMovie& movie) {
    auto removed = removeHiddenFiles(movie);
    if (removed) {
        removeFile(movie.journal);
    }
    return removed;
}

} // namespace starbloom
