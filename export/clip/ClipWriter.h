// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "export/clip/ClipFormat.h"

#include <filesystem>
#include <memory>
#include <variant>

namespace starbloom {

/// What a clip's pixels say of the place where there is no light. Alpha is always the brightest channel of the light,
/// so that a spark covers what is below it as much as it shines itself.
enum class AlphaMode {
    /// No alpha: every frame as it was drawn. A clip of a show on black belongs on a layer that adds (add, linear
    /// dodge), where it is the light of the show itself.
    Opaque,

    /// The colours are divided by alpha, for the normal mode (over) of a program that multiplies them by alpha again,
    /// as browsers and most editors do.
    Straight,

    /// The colours stay as they were drawn, already multiplied by alpha, for the normal mode of a program that is told
    /// so; nothing of the faint light is rounded away.
    Premultiplied,
};

/// How many frames are shown in how many seconds: 30 in 1, or 30000 in 1001.
struct FrameRate {
    int frames = 30;
    int seconds = 1;

    double perSecond() const { return static_cast<double>(frames) / seconds; }
};

struct ClipSettings {
    int width = 0; ///< Pixels, 1 up to what the format takes.
    int height = 0;
    FrameRate rate{}; ///< 1 to 1000 frames per second.
    AlphaMode alpha = AlphaMode::Opaque;
    double quality = 0.9; ///< 0.05 to 1, for formats that have one. 1 is lossless in WebP.
    int threads = 0;      ///< How many threads encode in ProRes and WebM; 0: as many as the machine has.
};

/// An open file descriptor, such as that of standard output, which stays the caller's.
struct ClipStream {
    int descriptor = -1;
};

using ClipDestination = std::variant<std::filesystem::path, ClipStream>;

/// Writes a clip frame by frame.
///
/// Frames are opaque pictures of the clip's size, as the renderer makes them. For a clip with alpha they are drawn on
/// black. Frame n is shown from n / rate seconds on, for as long as a frame lasts; a GIF rounds these moments to
/// hundredths of a second, and leaves out frames that would be shown for less than two of them.
/// GIF, WebP and APNG repeat for ever. The colours of ProRes, WebM and Y4M are converted as Rec. 709 for heights of 720
/// and more, else as Rec. 601, in the limited range, and tagged where the format can; those of the others are sRGB.
/// Y4M has even sides: an odd width or height gets one more column or row, of black.
///
///     auto writer = makeClipWriter(ClipFormat::Apng, "show.apng", {.width = 640, .height = 480});
///     if (!writer) return writer.error();
///     for (const ImageBuffer& frame : frames) {
///         if (auto added = writer.value()->add(frame); !added) return added;
///     }
///     return writer.value()->finish();
///
/// A file grows under a hidden name beside the target (see PendingFile) and takes its place in finish() only: a writer
/// that is destroyed before leaves the target as it was. A stream gets each frame at once. However long the clip, a
/// few frames are in memory. The same frames with the same number of threads give the same bytes.
///
/// Error messages name the target and end with the reason. A writer belongs to one thread at a time; the ones that help
/// it come from that thread's oneTBB arena, or end with the writer.
class ClipWriter {
public:
    virtual ~ClipWriter() = default;

    /// Appends a frame, which is not needed any more afterwards. One of another size is refused, and the clip can go on
    /// without it. After any other failure only destruction makes sense. Writing may lag behind, so a full disk can
    /// show up some frames late, but in finish() at the latest.
    virtual Result<void> add(const ImageBuffer& frame) = 0;

    /// Writes what is left and brings the file to its final name. Call it once, as the last thing. A clip without
    /// frames is refused.
    virtual Result<void> finish() = 0;
};

/// Fails for sizes, rates and kinds of alpha that the format does not have, for a stream where it needs a file, when
/// the file cannot be made, and when the encoder is missing.
Result<std::unique_ptr<ClipWriter>> makeClipWriter(ClipFormat format, const ClipDestination& destination,
                                                   const ClipSettings& settings);

} // namespace starbloom
