// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/FormatEncoders.h"
#include "export/picture/MemoryFile.h"
#include "export/picture/Palette.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include <cgif.h>

namespace starbloom {

namespace {

constexpr int largestSide = 65535;

/// A picture reduced to its palette.
struct Indexed {
    std::vector<std::uint8_t> pixels;
    std::array<std::uint8_t, 256 * 3> palette{};
    std::uint16_t colors = 0;
};

Error cannotMake(const std::string& why) {
    return Error{"cannot make a GIF: " + why};
}

Result<Indexed> quantize(const ImageBuffer& image) {
    const PaletteAttributes attributes(liq_attr_create());
    if (attributes == nullptr) {
        return cannotMake(wordsFor(LIQ_OUT_OF_MEMORY));
    }
    const PaletteImage source = opaqueImage(*attributes, image);
    if (source == nullptr) {
        return cannotMake(wordsFor(LIQ_OUT_OF_MEMORY));
    }
    liq_image_add_fixed_color(source.get(), mostFrequentColor(image));
    liq_result* raw = nullptr;
    if (const auto error = liq_image_quantize(source.get(), attributes.get(), &raw); error != LIQ_OK) {
        return cannotMake(wordsFor(error));
    }
    const PaletteResult result(raw);
    liq_set_dithering_level(result.get(), 1.0F);
    Indexed indexed;
    indexed.pixels.resize(image.bytes().size() / 4);
    if (const auto error =
            liq_write_remapped_image(result.get(), source.get(), indexed.pixels.data(), indexed.pixels.size());
        error != LIQ_OK) {
        return cannotMake(wordsFor(error));
    }
    const liq_palette& palette = *liq_get_palette(result.get());
    indexed.colors = static_cast<std::uint16_t>(palette.count);
    for (std::size_t i = 0; i < palette.count; ++i) {
        indexed.palette[3 * i] = palette.entries[i].r;
        indexed.palette[3 * i + 1] = palette.entries[i].g;
        indexed.palette[3 * i + 2] = palette.entries[i].b;
    }
    return indexed;
}

int onWrite(void* file, const std::uint8_t* data, const std::size_t length) {
    return static_cast<MemoryFile*>(file)->write(data, length) ? 0 : -1;
}

const char* reasonOf(int error) {
    return error == CGIF_EALLOC || error == CGIF_EWRITE ? "out of memory" : "the encoder failed";
}

Result<std::vector<std::byte>> write(Indexed& indexed, int width, int height) {
    MemoryFile file;
    CGIF_Config config{};
    config.pGlobalPalette = indexed.palette.data();
    config.numGlobalPaletteEntries = indexed.colors;
    config.width = static_cast<std::uint16_t>(width);
    config.height = static_cast<std::uint16_t>(height);
    config.pWriteFn = onWrite;
    config.pContext = &file;
    CGIF* gif = cgif_newgif(&config);
    if (gif == nullptr) {
        return cannotMake(reasonOf(CGIF_EALLOC));
    }
    CGIF_FrameConfig frame{};
    frame.pImageData = indexed.pixels.data();
    const int added = cgif_addframe(gif, &frame);
    const int closed = cgif_close(gif);
    if (added != CGIF_OK || closed != CGIF_OK) {
        return cannotMake(reasonOf(added != CGIF_OK ? added : closed));
    }
    return file.take();
}

/// The library has no word for comments, so one is put in front of the first block, behind the palette.
void insertComment(std::vector<std::byte>& gif, const std::string& comment) {
    const auto flags = std::to_integer<unsigned>(gif.at(10));
    const std::size_t place = 13 + ((flags & 0x80U) != 0 ? std::size_t{6} << (flags & 7U) : 0);
    std::vector<std::byte> block{std::byte{0x21}, std::byte{0xFE}};
    for (std::size_t at = 0; at < comment.size(); at += 255) {
        const auto piece =
            std::as_bytes(std::span(comment)).subspan(at, std::min<std::size_t>(255, comment.size() - at));
        block.push_back(static_cast<std::byte>(piece.size()));
        block.insert(block.end(), piece.begin(), piece.end());
    }
    block.push_back(std::byte{0});
    gif.insert(gif.begin() + static_cast<std::ptrdiff_t>(place), block.begin(), block.end());
    std::memcpy(gif.data(), "GIF89a", 6); // Comments came with that version.
}

} // namespace

Result<std::vector<std::byte>> encodeGif(const ImageBuffer& image, const std::string& comment) {
    if (image.width() < 1 || image.height() < 1) {
        return cannotMake("the picture has no pixels");
    }
    if (std::max(image.width(), image.height()) > largestSide) {
        return cannotMake("a GIF is at most 65535 pixels wide and high");
    }
    auto indexed = quantize(image);
    if (!indexed) {
        return indexed.error();
    }
    auto gif = write(indexed.value(), image.width(), image.height());
    if (gif && !comment.empty()) {
        insertComment(gif.value(), comment);
    }
    return gif;
}

} // namespace starbloom
