// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/picturesize/PictureFile.h"
#include "shell/picturesize/PictureSize.h"

#include <memory>
#include <tiffio.h>
#include <unistd.h>

namespace starbloom {

PixelSize tiffSize(const PictureFile& file) {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    // Not mapped into memory, which may be more than there is; the tables of strips, which may be long, not read.
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> tiff(TIFFFdOpen(::dup(file.descriptor()), "picture", "rmD"),
                                                           &TIFFClose);
    PixelSize size;
    // The library itself ends a chain of directories that leads back to one of them.
    for (int directory = 0; tiff != nullptr && directory < mostRepresentations; ++directory) {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        if (TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) == 1 &&
            TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) == 1) {
            size.cover({width, height});
        }
        if (TIFFReadDirectory(tiff.get()) != 1) {
            break;
        }
    }
    return size;
}

} // namespace starbloom
