// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/RasterRenderer.h"

#include "engine/raster/CommandChunk.h"
#include "engine/raster/LightBand.h"

#include <hwy/cache_control.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

/// Sprites are dropped between frames when they take more than this: only an image that looks different from each side,
/// turning at many large sizes, gets there.
constexpr std::size_t atlasBudget = 256U << 20U;

/// Within 0..1; what is no number counts as 0.
float unit(float value) {
    return value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}

std::uint16_t backgroundLight(float channel, float alpha) {
    const float shown = unit(channel) * unit(alpha);
    const int level = static_cast<int>(shown * 255.0F + 0.5F);
    return static_cast<std::uint16_t>((level << lightShift) + (1 << (lightShift - 1)));
}

ResolveSettings resolveSettings(const Color& background, PixelOrder order) {
    return {{backgroundLight(background.red, background.alpha), backgroundLight(background.green, background.alpha),
             backgroundLight(background.blue, background.alpha)},
            order};
}

/// How long one thread would take, roughly. Milliseconds.
double drawingTime(std::span<const SparkBatch> sparks, const RasterRenderer::View& view, const RasterTarget& target) {
    constexpr double pixels = 1'500'000.0;  // In a millisecond.
    constexpr double usualSparks = 4'000.0; // At one pixel per point.
    std::size_t count = 0;
    for (const SparkBatch& batch : sparks) {
        count += batch.size();
    }
    const double ofPixels = static_cast<double>(target.width) * target.height / pixels;
    const double ofSparks = static_cast<double>(count) * view.pixelsPerPoint * view.pixelsPerPoint / usualSparks;
    return std::max(ofPixels, ofSparks);
}

} // namespace

/// The working memory of a renderer, and the steps of one frame.
class RasterRenderer::Frame {
public:
    Frame(std::shared_ptr<Workers> workers, const RasterKernels& kernels)
        : m_workers(std::move(workers))
        , m_kernels(kernels) {}

    void render(std::span<const SparkBatch> sparks, const View& view, const RasterTarget& target, LitArea& lit);

    LitArea& ownArea() { return m_area; }

private:
    /// What a worker needs while it draws a band.
    struct BandMemory {
        LightBand light;
        std::vector<std::uint8_t> lit; ///< For each cell of the band.
    };

    void splitIntoChunks(std::span<const SparkBatch> sparks, const View& view, const RasterTarget& target);
    std::uint16_t atlasFor(const std::shared_ptr<const SparkImage>& image);
    void placeSparks();
    void forgetSprites();
    bool makeMissingSprites();
    void gatherLit(int band, std::vector<std::uint8_t>& cells) const;
    void drawBand(int band, BandMemory& memory, const View& view, const RasterTarget& target, LitArea& lit);
    void chooseWorkers(double drawingTime);
    template <typename Task>
    void forEach(std::size_t count, const Task& task) const;

    std::shared_ptr<Workers> m_workers; ///< May be none.
    const RasterKernels& m_kernels;
    std::vector<std::unique_ptr<SpriteAtlas>> m_atlases;
    std::vector<CommandChunk> m_chunks;
    std::size_t m_chunkCount = 0; ///< In use in this frame; the others only keep their memory.
    TileGrid m_grid;
    LitArea m_area; ///< For callers that have none.
    std::size_t m_mostWorkers = 1;
    std::vector<BandMemory> m_bands; ///< One for each worker.
};

template <typename Task>
void RasterRenderer::Frame::forEach(std::size_t count, const Task& task) const {
    if (m_mostWorkers > 1 && count > 1) {
        m_workers->share(count, m_mostWorkers, task);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        task(i, 0);
    }
}

void RasterRenderer::Frame::chooseWorkers(double drawingTime) {
    m_mostWorkers = m_workers != nullptr ? m_workers->worthwhile(drawingTime) : 1;
    const std::size_t present = m_workers != nullptr ? m_workers->count() : 1;
    if (m_bands.size() < present) {
        m_bands.resize(present);
    }
}

void RasterRenderer::Frame::render(std::span<const SparkBatch> sparks, const View& view, const RasterTarget& target,
                                   LitArea& lit) {
    m_grid = TileGrid(target.width, target.height);
    lit.begin(target.width, target.height, view.background);
    splitIntoChunks(sparks, view, target);
    chooseWorkers(drawingTime(sparks, view, target));
    forgetSprites();
    do {
        placeSparks();
    } while (makeMissingSprites());
    forEach(static_cast<std::size_t>(m_grid.bands()), [&](std::size_t band, std::size_t worker) {
        drawBand(static_cast<int>(band), m_bands[worker], view, target, lit);
    });
    lit.end();
}

void RasterRenderer::Frame::splitIntoChunks(std::span<const SparkBatch> sparks, const View& view,
                                            const RasterTarget& target) {
    // A show has one image or a few. One that keeps bringing new ones must not make us keep them all.
    if (m_atlases.size() > 16) {
        m_atlases.clear();
    }
    m_chunkCount = 0;
    std::size_t room = 0;
    for (const SparkBatch& batch : sparks) {
        if (batch.law().image == nullptr) {
            continue;
        }
        const std::uint16_t atlas = atlasFor(batch.law().image);
        PlaceSettings settings;
        settings.time = view.time;
        settings.pixelsPerPoint = static_cast<float>(view.pixelsPerPoint);
        settings.pictureHeight = static_cast<float>(target.height);
        settings.imageSizePixels = m_atlases[atlas]->sizeInPoints() * settings.pixelsPerPoint;
        for (std::size_t first = 0; first < batch.size();) {
            if (room == 0) {
                if (m_chunkCount == m_chunks.size()) {
                    m_chunks.emplace_back();
                }
                m_chunks[m_chunkCount++].begin();
                room = CommandChunk::capacity;
            }
            const std::size_t count = std::min(room, batch.size() - first);
            m_chunks[m_chunkCount - 1].add({&batch, first, count, settings, atlas});
            first += count;
            room -= count;
        }
    }
}

std::uint16_t RasterRenderer::Frame::atlasFor(const std::shared_ptr<const SparkImage>& image) {
    const auto found = std::ranges::find(m_atlases, image, [](const auto& atlas) { return atlas->image(); });
    if (found != m_atlases.end()) {
        return static_cast<std::uint16_t>(found - m_atlases.begin());
    }
    m_atlases.push_back(std::make_unique<SpriteAtlas>(image));
    return static_cast<std::uint16_t>(m_atlases.size() - 1);
}

void RasterRenderer::Frame::placeSparks() {
    forEach(m_chunkCount,
            [&](std::size_t i, std::size_t /*worker*/) { m_chunks[i].place(m_kernels, m_grid, m_atlases); });
}

void RasterRenderer::Frame::forgetSprites() {
    std::size_t bytes = 0;
    for (const auto& atlas : m_atlases) {
        bytes += atlas->bytes();
    }
    if (bytes > atlasBudget) {
        for (auto& atlas : m_atlases) {
            atlas->clear();
        }
    }
}

bool RasterRenderer::Frame::makeMissingSprites() {
    std::vector<MissingSprite> missing;
    for (std::size_t i = 0; i < m_chunkCount; ++i) {
        const auto& some = m_chunks[i].missing();
        missing.insert(missing.end(), some.begin(), some.end());
    }
    std::ranges::sort(missing);
    missing.erase(std::unique(missing.begin(), missing.end()), missing.end());
    std::vector<std::unique_ptr<SpriteSet>> made(missing.size());
    forEach(missing.size(), [&](std::size_t i, std::size_t /*worker*/) {
        made[i] = m_atlases[missing[i].atlas]->make(static_cast<int>(missing[i].key));
    });
    for (std::size_t i = 0; i < missing.size(); ++i) {
        m_atlases[missing[i].atlas]->install(static_cast<int>(missing[i].key), std::move(made[i]));
    }
    return !missing.empty();
}

void RasterRenderer::Frame::drawBand(int band, BandMemory& memory, const View& view, const RasterTarget& target,
                                     LitArea& lit) {
    const int top = band * TileGrid::tileHeight;
    const int rows = std::min(TileGrid::tileHeight, target.height - top);
    memory.light.begin(target.width, rows);
    gatherLit(band, memory.lit);
    const CellGrid& grid = m_grid.cells();
    const ResolveSettings settings = resolveSettings(view.background, target.order);
    for (int column = 0; column < m_grid.columns(); ++column) {
        for (std::size_t i = 0; i < m_chunkCount; ++i) {
            const auto commands = m_chunks[i].commandsIn(m_grid.tile(band, column));
            if (!commands.empty()) {
                m_kernels.draw(commands, memory.light.light(), memory.light.planeStride());
            }
        }
    }
    for (int y = 0; y < rows; y += CellGrid::cellHeight) {
        memory.light.resolve(m_kernels, settings,
                             {y, std::min(CellGrid::cellHeight, rows - y),
                              grid.row(memory.lit, y / CellGrid::cellHeight), lit.row((top + y) / CellGrid::cellHeight),
                              target.pixels + static_cast<std::size_t>(top + y) * target.bytesPerRow,
                              target.bytesPerRow});
    }
    hwy::FlushStream(); // Before anybody else reads them.
}

void RasterRenderer::Frame::gatherLit(int band, std::vector<std::uint8_t>& cells) const {
    const CellGrid& grid = m_grid.cells();
    const std::size_t first = grid.index(band * TileGrid::tileHeight / CellGrid::cellHeight, 0);
    const std::size_t end =
        std::min(grid.index((band + 1) * TileGrid::tileHeight / CellGrid::cellHeight, 0), grid.count());
    cells.assign(end - first, 0);
    for (std::size_t i = 0; i < m_chunkCount; ++i) {
        const std::span<const std::uint8_t> some = m_chunks[i].lit().subspan(first, cells.size());
        for (std::size_t cell = 0; cell < cells.size(); ++cell) {
            cells[cell] |= some[cell];
        }
    }
}

RasterTarget RasterTarget::of(ImageBuffer& image) {
    return {image.bytes().data(), image.bytesPerRow(), image.width(), image.height(), PixelOrder::Rgba};
}

RasterRenderer::RasterRenderer(std::shared_ptr<Workers> workers, const RasterKernels& kernels)
    : m_frame(std::make_unique<Frame>(std::move(workers), kernels)) {}

RasterRenderer::~RasterRenderer() = default;
RasterRenderer::RasterRenderer(RasterRenderer&&) noexcept = default;
RasterRenderer& RasterRenderer::operator=(RasterRenderer&&) noexcept = default;

void RasterRenderer::render(std::span<const SparkBatch> sparks, const View& view, const RasterTarget& target) {
    m_frame->ownArea().forget();
    m_frame->render(sparks, view, target, m_frame->ownArea());
}

void RasterRenderer::renderNext(std::span<const SparkBatch> sparks, const View& view, const RasterTarget& target,
                                LitArea& lit) {
    m_frame->render(sparks, view, target, lit);
}

} // namespace starbloom
