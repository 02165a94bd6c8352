// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/FormatWriters.h"
#include "export/picture/Palette.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <cgif.h>

namespace starbloom {

namespace {

/// The shortest time that programs show a frame for, in hundredths of a second; what is below is shown for ten.
constexpr std::int64_t shortestDelay = 2;

/// Speed of the search for a palette, 1, the slowest, to 10. At 4, frames take twice as long and gain 0.2 dB; at 9,
/// they take three quarters and lose 1 dB.
constexpr int paletteSpeed = 7;

struct CloseGif {
    void operator()(CGIF* gif) const { cgif_close(gif); }
};

/// Reduces frames to palettes, each to be shown over the frames before it.
///
/// A pixel that did not change stays as it is shown, and so does one that the palette could not show better; both are
/// left transparent, so that nothing flickers that does not move. Only the others have a say in the palette. There is
/// no dithering, as its dots would crawl; of so many colours for what moves alone, it is not missed.
class FramePalette {
public:
    FramePalette(int width, int height)
        : m_indices(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

    liq_error reduce(const ImageBuffer& frame);

    std::span<std::uint8_t> indices() { return m_indices; }

    /// Red, green and blue of each entry.
    std::array<std::uint8_t, 256 * 3>& colors() { return m_colors; }

    std::uint16_t colorCount() const { return m_colorCount; }

    std::uint8_t transparent() const { return m_transparent; }

private:
    void findChanges(const ImageBuffer& frame);
    ImageBuffer changedPixels(const ImageBuffer& image) const;
    liq_error quantize(const ImageBuffer& pixels, liq_color sky, std::span<std::uint8_t> indices);
    void readPalette(const liq_palette& palette);
    void show(std::span<const std::uint8_t> indices);

    ImageBuffer m_previous;
    ImageBuffer m_shown;
    std::vector<std::size_t> m_changes; ///< Places of pixels that differ from those of the previous frame.
    std::vector<std::uint8_t> m_indices;
    std::array<std::uint8_t, 256 * 3> m_colors{};
    std::uint16_t m_colorCount = 0;
    std::uint8_t m_transparent = 0;
};

void FramePalette::findChanges(const ImageBuffer& frame) {
    const bool isFirst = m_previous.bytes().empty();
    m_changes.clear();
    for (std::size_t i = 0; i < m_indices.size(); ++i) {
        const std::size_t at = i * ImageBuffer::channels;
        if (isFirst || std::memcmp(&frame.bytes()[at], &m_previous.bytes()[at], 3) != 0) {
            m_changes.push_back(i);
        }
    }
}

/// The pixels that changed, in a strip of their own, as without dithering nobody asks where they were.
ImageBuffer FramePalette::changedPixels(const ImageBuffer& image) const {
    constexpr int stripWidth = 256;
    ImageBuffer strip(stripWidth, static_cast<int>((m_changes.size() + stripWidth - 1) / stripWidth));
    for (std::size_t i = 0; i < m_changes.size(); ++i) {
        std::memcpy(&strip.bytes()[i * ImageBuffer::channels], &image.bytes()[m_changes[i] * ImageBuffer::channels],
                    ImageBuffer::channels);
    }
    return strip;
}

void FramePalette::readPalette(const liq_palette& palette) {
    m_colorCount = static_cast<std::uint16_t>(palette.count);
    for (std::size_t i = 0; i < palette.count; ++i) {
        const liq_color& color = palette.entries[i];
        m_colors[3 * i] = color.r;
        m_colors[3 * i + 1] = color.g;
        m_colors[3 * i + 2] = color.b;
        if (color.a == 0) {
            m_transparent = static_cast<std::uint8_t>(i);
        }
    }
}

/// Finds a palette for the pixels of a frame, and which of its entries each gets.
liq_error FramePalette::quantize(const ImageBuffer& pixels, liq_color sky, std::span<std::uint8_t> indices) {
    const PaletteAttributes attributes(liq_attr_create());
    if (attributes == nullptr) {
        return LIQ_OUT_OF_MEMORY;
    }
    liq_set_speed(attributes.get(), paletteSpeed);
    const PaletteImage image = opaqueImage(*attributes, pixels);
    const ImageBuffer shown = m_shown.bytes().empty() ? ImageBuffer() : changedPixels(m_shown);
    if (image == nullptr) {
        return LIQ_OUT_OF_MEMORY;
    }
    if (!shown.bytes().empty()) {
        PaletteImage below = opaqueImage(*attributes, shown);
        if (below == nullptr || liq_image_set_background(image.get(), below.get()) != LIQ_OK) {
            return LIQ_OUT_OF_MEMORY;
        }
        below.release(); // The picture that lies on it owns it now.
    }
    liq_image_add_fixed_color(image.get(), {0, 0, 0, 0});
    liq_image_add_fixed_color(image.get(), sky);
    liq_result* raw = nullptr;
    if (const liq_error error = liq_image_quantize(image.get(), attributes.get(), &raw); error != LIQ_OK) {
        return error;
    }
    const PaletteResult result(raw);
    liq_set_dithering_level(raw, 0.0F);
    const liq_error error = liq_write_remapped_image(raw, image.get(), indices.data(), indices.size());
    if (error == LIQ_OK) {
        readPalette(*liq_get_palette(raw));
    }
    return error;
}

/// Puts the changed pixels where they belong, and notes what is seen now.
void FramePalette::show(std::span<const std::uint8_t> indices) {
    std::ranges::fill(m_indices, m_transparent);
    for (std::size_t i = 0; i < m_changes.size(); ++i) {
        if (indices[i] != m_transparent) {
            m_indices[m_changes[i]] = indices[i];
            std::copy_n(&m_colors[std::size_t{3} * indices[i]], 3,
                        &m_shown.bytes()[m_changes[i] * ImageBuffer::channels]);
        }
    }
}

liq_error FramePalette::reduce(const ImageBuffer& frame) {
    findChanges(frame);
    std::vector<std::uint8_t> indices;
    if (!m_changes.empty()) {
        const ImageBuffer pixels = changedPixels(frame);
        indices.resize(pixels.bytes().size() / ImageBuffer::channels);
        if (const liq_error error = quantize(pixels, mostFrequentColor(frame), indices); error != LIQ_OK) {
            return error;
        }
    }
    if (m_shown.bytes().empty()) {
        m_shown = ImageBuffer(frame.width(), frame.height());
    }
    show(indices);
    m_previous = frame;
    return LIQ_OK;
}

class GifClipWriter final : public ClipWriter {
public:
    GifClipWriter(ClipOutput output, const ClipSettings& settings)
        : m_output(std::move(output))
        , m_rate(settings.rate)
        , m_palette(settings.width, settings.height)
        , m_width(static_cast<std::uint16_t>(settings.width))
        , m_height(static_cast<std::uint16_t>(settings.height)) {}

    Result<void> open();
    Result<void> add(const ImageBuffer& frame) override;
    Result<void> finish() override;

private:
    static int onWrite(void* writer, const std::uint8_t* data, std::size_t length);

    /// When a frame begins, in hundredths of a second.
    std::int64_t moment(std::int64_t frame) const {
        return (frame * 100 * m_rate.seconds + m_rate.frames / 2) / m_rate.frames;
    }

    Error failure(int error) const;

    ClipOutput m_output;
    FrameRate m_rate;
    FramePalette m_palette;
    std::uint16_t m_width;
    std::uint16_t m_height;
    std::int64_t m_frame = 0;
    std::int64_t m_nextShown = 0;
    std::optional<Error> m_writeFailure;
    std::unique_ptr<CGIF, CloseGif> m_gif; ///< Writes through the others until it is closed.
};

int GifClipWriter::onWrite(void* writer, const std::uint8_t* data, std::size_t length) {
    auto& self = *static_cast<GifClipWriter*>(writer);
    if (!self.m_writeFailure) {
        if (auto written = self.m_output.write(std::as_bytes(std::span(data, length))); !written) {
            self.m_writeFailure = written.error();
        }
    }
    return self.m_writeFailure ? -1 : 0;
}

/// The library tells that writing failed, but not why.
Error GifClipWriter::failure(int error) const {
    if (m_writeFailure) {
        return *m_writeFailure;
    }
    return m_output.failure(error == CGIF_EALLOC ? "out of memory" : "the encoder failed");
}

Result<void> GifClipWriter::open() {
    CGIF_Config config{};
    config.attrFlags = CGIF_ATTR_IS_ANIMATED | CGIF_ATTR_NO_GLOBAL_TABLE;
    config.width = m_width;
    config.height = m_height;
    config.numLoops = CGIF_INFINITE_LOOP;
    config.pWriteFn = onWrite;
    config.pContext = this;
    m_gif.reset(cgif_newgif(&config));
    return m_gif != nullptr ? Result<void>() : failure(CGIF_EALLOC);
}

Result<void> GifClipWriter::add(const ImageBuffer& frame) {
    const std::int64_t number = m_frame++;
    if (number < m_nextShown) {
        return {};
    }
    m_nextShown = number + 1;
    while (moment(m_nextShown) - moment(number) < shortestDelay) {
        ++m_nextShown;
    }
    if (const liq_error error = m_palette.reduce(frame); error != LIQ_OK) {
        return m_output.failure(wordsFor(error));
    }
    CGIF_FrameConfig config{};
    config.pLocalPalette = m_palette.colors().data();
    config.numLocalPaletteEntries = m_palette.colorCount();
    config.pImageData = m_palette.indices().data();
    config.attrFlags = CGIF_FRAME_ATTR_USE_LOCAL_TABLE;
    if (number > 0) {
        config.attrFlags |= CGIF_FRAME_ATTR_HAS_SET_TRANS;
        config.transIndex = m_palette.transparent();
    }
    config.delay = static_cast<std::uint16_t>(moment(m_nextShown) - moment(number));
    const int error = cgif_addframe(m_gif.get(), &config);
    return error == CGIF_OK ? Result<void>() : failure(error);
}

Result<void> GifClipWriter::finish() {
    const int error = cgif_close(m_gif.release());
    return error == CGIF_OK ? m_output.finish() : failure(error);
}

} // namespace

MadeClipWriter makeGifClipWriter(ClipOutput output, const ClipSettings& settings) {
    auto writer = std::make_unique<GifClipWriter>(std::move(output), settings);
    if (auto opened = writer->open(); !opened) {
        return opened.error();
    }
    return std::unique_ptr<ClipWriter>(std::move(writer));
}

} // namespace starbloom
