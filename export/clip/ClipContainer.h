// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "export/clip/ClipWriter.h"
#include "export/movie/LibavSupport.h"

#include <filesystem>

namespace starbloom {

/// The kinds of files that packets of video are put into.
enum class ContainerKind {
    Mpeg4,     ///< With its index in front, so that it plays while it is being loaded.
    QuickTime, ///< With its index behind, as files for editing are large.
    WebM,
};

/// Puts packets of video into a file. Packet times count frames.
///
/// Errors are the reason alone, in the library's or the system's words. One thread at a time.
class ClipContainer {
public:
    /// Opens the file, which may exist, and writes what comes before the pictures. In WebM, alpha has to be told of.
    static Result<ClipContainer> open(const std::filesystem::path& path, ContainerKind kind,
                                      const AVCodecParameters& parameters, FrameRate rate, bool hasAlpha);

    /// Appends a packet, in the order of decoding. Its contents are untouched, its times become the file's.
    Result<void> write(AVPacket& packet);

    /// Writes what comes after the pictures and closes the file.
    Result<void> finish();

private:
    explicit ClipContainer(FrameRate rate)
        : m_frameDuration{rate.seconds, rate.frames} {}

    Result<void> addStream(const AVCodecParameters& parameters, ContainerKind kind);
    Result<void> writeHeader(ContainerKind kind);

    AVRational m_frameDuration;
    ContainerPointer m_container;
    AVStream* m_stream = nullptr; ///< owned by the container
};

/// With a protocol in front, no path can be mistaken for something else than a file.
std::string urlOf(const std::filesystem::path& path);

} // namespace starbloom
