// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "base/ImageBuffer.h"
#include "engine/raster/LitArea.h"
#include "engine/raster/RasterKernels.h"
#include "engine/raster/Workers.h"
#include "engine/time/SparkBatch.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace starbloom {

/// Where a picture goes: memory of the caller's, four bytes per pixel, rows from top to bottom. Each row begins at a
/// multiple of four bytes.
struct RasterTarget {
    std::uint8_t* pixels = nullptr;
    std::size_t bytesPerRow = 0;
    int width = 0; ///< Pixels, at least 1.
    int height = 0;
    PixelOrder order = PixelOrder::Rgba;

    friend bool operator==(const RasterTarget&, const RasterTarget&) = default;

    /// All of an image buffer, which must outlive the target.
    static RasterTarget of(ImageBuffer& image);
};

/// Draws sparks on the CPU: the reference for every picture, movie frame and screen without a graphics processor.
///
/// Each spark adds its tinted image to the light of the pixels below it, at its place to an eighth of a pixel; light
/// adds up in 16 bits per channel and is limited once, together with the background, when it becomes a pixel. The same
/// sparks give the same bytes for any number of threads and any width of vectors.
///
/// How threads share the work: sparks are placed in chunks and sorted into tiles, one chunk a task; then the picture is
/// drawn in bands of rows, one band a task, each of which reads all chunks and alone writes its rows. Between the two,
/// missing sprites are made, also in parallel. A small frame is drawn by the caller alone: waking others would take
/// longer than the drawing.
///
/// A renderer keeps sprites and working memory for the next frame. It may be used from one thread at a time.
class RasterRenderer {
public:
    /// Without workers the caller draws alone. Several renderers may have the same ones, unless they draw at once.
    explicit RasterRenderer(std::shared_ptr<Workers> workers = nullptr, const RasterKernels& kernels = vectorKernels());
    ~RasterRenderer();
    RasterRenderer(RasterRenderer&&) noexcept;
    RasterRenderer& operator=(RasterRenderer&&) noexcept;

    struct View {
        double time = 0.0;           ///< The moment, in the layer's own time.
        double pixelsPerPoint = 1.0; ///< The stage's bottom left corner is the picture's; more pixels show it finer.
        Color background{0.0F, 0.0F, 0.0F, 1.0F}; ///< Over black where it is not opaque.
    };

    /// Overwrites the whole target with opaque pixels.
    void render(std::span<const SparkBatch> sparks, const View& view, const RasterTarget& target);

    /// The same, into memory that still holds the frame that `lit` tells of: what is dark in both is not touched.
    void renderNext(std::span<const SparkBatch> sparks, const View& view, const RasterTarget& target, LitArea& lit);

private:
    class Frame;
    std::unique_ptr<Frame> m_frame;
};

} // namespace starbloom
