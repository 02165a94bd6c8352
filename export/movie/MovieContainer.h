// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "export/movie/LibavSupport.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

namespace starbloom {

/// How a movie lies in its file.
enum class MovieLayout {
    Regular,    ///< One index, in front, as players like it. Nothing can be played before finish().
    Fragmented, ///< Pieces that can each be played without what follows: for a file that may be cut off at any moment.
};

/// Puts H.264 packets into an MPEG-4 file. Packet times count frames and begin with 0.
///
/// A piece of a fragmented file ends wherever no frame is missing among those before, every few frames; it is handed to
/// the system at once, so it outlives the program. The overhead is some 200 bytes each.
///
/// Errors are the reason alone, in the library's or the system's words. One thread at a time.
class MovieContainer {
public:
    /// Opens the file, which may exist, and writes what comes before the pictures. `parameters` are the stream's.
    static Result<MovieContainer> open(const std::filesystem::path& path, const AVCodecParameters& parameters,
                                       int framesPerSecond, MovieLayout layout);

    /// Appends a packet, in the order of decoding. Its contents are untouched, its times become the file's.
    Result<void> write(AVPacket& packet);

    /// Writes what comes after the pictures and closes the file.
    Result<void> finish();

    std::int64_t writtenFrames() const { return m_written; }

private:
    MovieContainer(MovieLayout layout, AVRational frameDuration)
        : m_layout(layout)
        , m_frameDuration(frameDuration) {}

    Result<void> openFile(const std::filesystem::path& path);
    Result<void> start(const AVCodecParameters& parameters);
    Result<void> endFragment();
    Result<void> outcomeOf(int averror) const;

    MovieLayout m_layout;
    AVRational m_frameDuration;
    ContainerPointer m_container;
    AVStream* m_stream = nullptr; ///< owned by the container
    std::int64_t m_written = 0;
    std::int64_t m_lastShown = -1; ///< the largest time of a packet so far, in frames
};

/// Reads the packets of a movie file that this program has written, up to where it was cut off.
class MovieReader {
public:
    /// Any file but one that begins like a movie is refused. `framesPerSecond` is the rate it was written with.
    static Result<MovieReader> open(const std::filesystem::path& path, int framesPerSecond);

    /// The next packet in the order of decoding, its times in frames from 0; nothing at the end or where the file is
    /// damaged. Valid until the next call.
    AVPacket* next();

    const AVCodecParameters& parameters() const { return *m_stream->codecpar; }

private:
    MovieReader() = default;

    InputPointer m_input;
    PacketPointer m_packet;
    AVStream* m_stream = nullptr; ///< owned by the input
    AVRational m_frameDuration{};
    std::optional<std::int64_t> m_firstTime;
};

/// Copies the packets of a movie file into a regular one, as they are, without a gap: those at the end that follow a
/// missing one stay behind. Gives the number of frames, which may be 0. Calls `goesOn` for each, and stops with an
/// Error when that says no.
Result<std::int64_t> copyMovie(const std::filesystem::path& from, const std::filesystem::path& to, int framesPerSecond,
                               const std::function<bool()>& goesOn);

} // namespace starbloom
