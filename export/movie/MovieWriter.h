// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "export/movie/MovieFormat.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

namespace starbloom {

struct MovieWriterOptions {
    /// Lets the movie grow in a fragmented file that can be played up to where it ends, whenever that is (see
    /// recoverMovie()). finish() makes a regular one from it, so for a moment the movie lies on the disk twice. Where
    /// there is no room for that, the fragmented one becomes the movie: its pictures are the same, but its index is
    /// spread over the file, and its times begin two frames late.
    bool survivesKill = false;

    /// Called for each frame that has been written, with their number so far, and again while finish() copies. When it
    /// says false, the movie is given up: the call in progress fails.
    std::function<bool(std::int64_t frames)> frameWritten;
};

/// Writes a silent movie, frame by frame: H.264 in an MPEG-4 container, whatever the file's extension, with the index
/// in front so that it plays while it is being loaded.
///
/// Movies have even sides, so an odd width or height gets one more column or row, of black. The colours are tagged and
/// converted as Rec. 709 for heights of 720 and more, else as Rec. 601, in the limited range. Frame n is shown from n /
/// framesPerSecond seconds on, for 1 / framesPerSecond seconds. The same frames with the same number of threads give
/// the same bytes.
///
///     auto writer = MovieWriter::create("show.mp4", {.width = 640, .height = 480, .framesPerSecond = 30});
///     if (!writer) return writer.error();
///     for (const ImageBuffer& frame : frames) {
///         if (auto added = writer.value().addFrame(frame); !added) return added;
///     }
///     return writer.value().finish();
///
/// The movie grows in a hidden file beside the target (see PendingFile) and takes its place in finish() only: a writer
/// that is destroyed before leaves the target as it was. Error messages name the target and end with the reason, be it
/// the system's or the encoder's. What the encoder has to say beside that, goes to the log under "export".
///
/// A writer belongs to one thread at a time; the threads that it starts itself end with it. A writer that was moved
/// from can only be destroyed or assigned to.
class MovieWriter {
public:
    /// Fails for sizes and rates out of range, when the file cannot be made, and when there is no H.264 encoder.
    static Result<MovieWriter> create(const std::filesystem::path& target, const MovieFormat& format,
                                      MovieWriterOptions options = {});

    MovieWriter(MovieWriter&& other) noexcept;
    MovieWriter& operator=(MovieWriter&& other) noexcept;
    ~MovieWriter();

    /// Appends a frame; alpha is ignored, and the picture is not needed any more afterwards. A frame of another size
    /// than the movie's is refused, and the movie can go on without it. After any other failure only destruction makes
    /// sense. Encoding lags behind, so a full disk may show up some frames late, but in finish() at the latest.
    Result<void> addFrame(const ImageBuffer& image);

    /// Encodes what is left, closes the file and brings it to its final name. Call it once, as the last thing. A movie
    /// without frames is refused.
    Result<void> finish();

    /// The hidden file that the movie grows in, and the one that takes the target's place; without survivesKill it is
    /// the same. For telling a later run what was left behind.
    const std::filesystem::path& partPath() const;
    const std::filesystem::path& finalPath() const;

private:
    class Encoding;

    explicit MovieWriter(std::unique_ptr<Encoding> encoding);

    std::unique_ptr<Encoding> m_encoding;
};

} // namespace starbloom
