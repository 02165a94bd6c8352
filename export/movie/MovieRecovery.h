// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace starbloom {

// A movie under way lies in a hidden file beside its target. A small file elsewhere, the journal, names it meanwhile,
// so that the next run can find what a killed one left behind. Several runs at once may use the same path: while it is
// taken, numbers are appended to it (".1" to ".9").

/// A movie that is being written, or was when its program ended.
struct UnfinishedMovie {
    std::filesystem::path target;  ///< Where it was to go; absolute.
    std::filesystem::path part;    ///< What there is of it.
    std::filesystem::path pending; ///< The hidden file that becomes the target at the very end; gone when one has.
    int framesPerSecond = 0;
    std::filesystem::path journal; ///< The file that tells.
};

/// Keeps a movie named in a journal while it lives. Not thread-safe.
class MovieJournal {
public:
    /// Fails when no journal can be written; the movie can be without. `movie.journal` is the path to begin with.
    static Result<MovieJournal> begin(UnfinishedMovie movie);

    MovieJournal(MovieJournal&& other) noexcept;
    MovieJournal& operator=(MovieJournal&&) = delete;

    /// The movie is written or given up: removes the journal. It stays while a hidden file that it names does, as in a
    /// folder that may no longer be changed, so that a later run can remove both.
    ~MovieJournal();

private:
    MovieJournal(UnfinishedMovie movie, int descriptor);

    UnfinishedMovie m_movie;
    int m_descriptor; ///< Locked, which tells other runs that this one lives.
};

/// A movie that a run which is no more left behind, with at least one frame in it. Removes on the way what is of no
/// use: journals that cannot be read, of movies that were saved after all or have no frame. Those whose folder is
/// not there at the moment are left for later. Whatever a journal says, only this program's own hidden files are
/// touched.
std::optional<UnfinishedMovie> findInterruptedMovie(const std::filesystem::path& journal);

struct RecoveredMovie {
    std::filesystem::path path;
    std::int64_t frames = 0;
    double seconds = 0.0;
};

/// Makes a regular movie of what there is, "NAME (recovered).m4v" beside the target, or "NAME (recovered 2).m4v" and so
/// on where that exists, and then removes what was left behind. When it fails, all is as before. The pictures are
/// copied, so it takes no longer than copying a file. `goesOn` is asked for each frame.
Result<RecoveredMovie> recoverMovie(
    const UnfinishedMovie& movie, const std::function<bool()>& goesOn = [] { return true; });

/// The user does not want it: removes what was left behind. Where that cannot be removed the journal stays as well, and
/// a later run finds it again.
Result<void> discardInterruptedMovie(const UnfinishedMovie& movie);

} // namespace starbloom
