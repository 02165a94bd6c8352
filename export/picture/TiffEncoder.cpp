// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/ColorProfile.h"
#include "export/picture/FormatEncoders.h"
#include "export/picture/MemoryFile.h"

#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

#include <tiffio.h>

namespace starbloom {

namespace {

struct TiffWriting {
    MemoryFile file;
    std::array<char, 256> failure{}; ///< The first one; what follows is its echo.
};

TiffWriting& writingOf(thandle_t handle) {
    return *static_cast<TiffWriting*>(handle);
}

int onError(TIFF* /*tiff*/, void* user, const char* /*module*/, const char* format, std::va_list arguments) {
    auto& failure = static_cast<TiffWriting*>(user)->failure;
    if (failure[0] == '\0') {
        std::vsnprintf(failure.data(), failure.size(), format, arguments);
    }
    return 1; // It goes nowhere else.
}

int onWarning(TIFF* /*tiff*/, void* /*user*/, const char* /*module*/, const char* /*format*/, std::va_list) {
    return 1;
}

tmsize_t onRead(thandle_t handle, void* data, tmsize_t length) {
    return static_cast<tmsize_t>(writingOf(handle).file.read(data, static_cast<std::size_t>(length)));
}

tmsize_t onWrite(thandle_t handle, void* data, tmsize_t length) {
    return writingOf(handle).file.write(data, static_cast<std::size_t>(length)) ? length : -1;
}

toff_t onSeek(thandle_t handle, toff_t offset, int whence) {
    MemoryFile& file = writingOf(handle).file;
    const std::size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position() : file.size();
    file.seek(from + offset);
    return file.position();
}

int onClose(thandle_t /*handle*/) {
    return 0;
}

toff_t onSize(thandle_t handle) {
    return writingOf(handle).file.size();
}

using TiffHandle = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

TiffHandle openForWriting(TiffWriting& writing) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   TIFFOpenOptionsFree);
    if (options == nullptr) {
        return {nullptr, TIFFClose};
    }
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), onError, &writing);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), onWarning, nullptr);
    return {TIFFClientOpenExt("picture", "wm", &writing, onRead, onWrite, onSeek, onClose, onSize, nullptr, nullptr,
                              options.get()),
            TIFFClose};
}

bool setFields(TIFF* tiff, const ImageBuffer& image, int channels, const std::string& comment) {
    const auto profile = srgbProfile();
    bool good = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width()) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height()) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, channels) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) != 0;
    // Glows are smooth, so differences to the left neighbour are small numbers.
    good = good && TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0)) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 72.0) != 0;
    good = good && TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 72.0) != 0;
    good =
        good && TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()), profile.data()) != 0;
    if (channels == 4) {
        const std::uint16_t straight = EXTRASAMPLE_UNASSALPHA;
        good = good && TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &straight) != 0;
    }
    return good && (comment.empty() || TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, comment.c_str()) != 0);
}

bool writeRows(TIFF* tiff, const ImageBuffer& image, int channels) {
    // The predictor works in the row that it is given.
    std::vector<std::uint8_t> row(image.bytesPerRow());
    for (int y = 0; y < image.height(); ++y) {
        const std::uint8_t* from = image.row(y);
        if (channels == 4) {
            std::memcpy(row.data(), from, row.size());
        } else {
            std::uint8_t* to = row.data();
            for (int x = 0; x < image.width(); ++x, from += 4, to += 3) {
                to[0] = from[0];
                to[1] = from[1];
                to[2] = from[2];
            }
        }
        if (TIFFWriteScanline(tiff, row.data(), static_cast<std::uint32_t>(y), 0) < 0) {
            return false;
        }
    }
    return true;
}

} // namespace

Result<std::vector<std::byte>> encodeTiff(const ImageBuffer& image, bool alpha, const std::string& comment) {
    if (image.width() < 1 || image.height() < 1) {
        return Error{"cannot make a TIFF of a picture without pixels"};
    }
    const int channels = alpha ? 4 : 3;
    TiffWriting writing;
    TiffHandle tiff = openForWriting(writing);
    // The directory is written by hand: closing would do it too, but keeps a failure to itself.
    const bool good = tiff != nullptr && setFields(tiff.get(), image, channels, comment) &&
                      writeRows(tiff.get(), image, channels) && TIFFWriteDirectory(tiff.get()) != 0;
    tiff.reset();
    if (!good || writing.failure[0] != '\0') {
        return Error{std::string("cannot make a TIFF: ") +
                     (writing.failure[0] != '\0' ? writing.failure.data() : "out of memory")};
    }
    return writing.file.take();
}

} // namespace starbloom
