// SPDX-License-Identifier: GPL-3.0-or-later

// What a picture costs beside the writers of others, all into memory, from the same frame of a show: Qt's for PNG, JPEG
// and BMP, and for TIFF libtiff called row by row. Measured in turns; the figures are ratios of medians.
//
//     picture_bench [rounds]

#include "cli/FramePipeline.h"
#include "export/picture/MemoryFile.h"
#include "export/picture/PictureEncoder.h"

#include <QBuffer>
#include <QImage>
#include <QImageWriter>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <tiffio.h>

namespace {

using namespace starbloom;
using Clock = std::chrono::steady_clock;

/// Yields the size of what it has written.
using Writer = std::function<std::size_t()>;

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Milliseconds.
double timeOf(const Writer& writer, std::size_t& size) {
    const auto start = Clock::now();
    size = writer();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void compare(const char* name, int rounds, const Writer& ours, const Writer& theirs) {
    std::vector<double> our;
    std::vector<double> their;
    std::size_t ourSize = 0;
    std::size_t theirSize = 0;
    for (int round = 0; round < rounds; ++round) {
        their.push_back(timeOf(theirs, theirSize));
        our.push_back(timeOf(ours, ourSize));
    }
    std::printf("%-22s %8.1f ms %8zu bytes, other %8.1f ms %8zu bytes: time %.2f, size %.2f\n", name, median(our),
                ourSize, median(their), theirSize, median(our) / median(their),
                static_cast<double>(ourSize) / static_cast<double>(theirSize));
}

Writer ours(const ImageBuffer& image, PictureFormat format, double quality = 1.0) {
    return [&image, format, quality] { return encodePicture(image, {format, quality}, nullptr).value().size(); };
}

Writer qts(const QImage& image, const char* format, int quality = -1) {
    return [&image, format, quality] {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        QImageWriter writer(&buffer, format);
        writer.setQuality(quality);
        if (!writer.write(image)) {
            std::exit(1);
        }
        return static_cast<std::size_t>(buffer.size());
    };
}

/// Rows of red, green and blue without anything between them, as libtiff likes them best.
std::vector<std::uint8_t> packed(const ImageBuffer& image) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < image.bytes().size(); ++i) {
        if (i % 4 != 3) {
            bytes.push_back(image.bytes()[i]);
        }
    }
    return bytes;
}

std::size_t writeTiff(const ImageBuffer& image, std::vector<std::uint8_t> rows, int predictor) {
    MemoryFile file;
    TIFF* tiff = TIFFClientOpen(
        "bench", "wm", &file,
        [](thandle_t handle, void* data, tmsize_t length) {
            return static_cast<tmsize_t>(
                static_cast<MemoryFile*>(handle)->read(data, static_cast<std::size_t>(length)));
        },
        [](thandle_t handle, void* data, tmsize_t length) {
            static_cast<MemoryFile*>(handle)->write(data, static_cast<std::size_t>(length));
            return length;
        },
        [](thandle_t handle, toff_t offset, int whence) -> toff_t {
            auto& memory = *static_cast<MemoryFile*>(handle);
            memory.seek(offset + (whence == SEEK_SET ? 0 : whence == SEEK_CUR ? memory.position() : memory.size()));
            return memory.position();
        },
        [](thandle_t) { return 0; },
        [](thandle_t handle) -> toff_t { return static_cast<MemoryFile*>(handle)->size(); }, nullptr, nullptr);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, image.width());
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, image.height());
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, predictor);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    const std::size_t rowSize = rows.size() / static_cast<std::size_t>(image.height());
    for (int y = 0; y < image.height(); ++y) {
        TIFFWriteScanline(tiff, rows.data() + rowSize * static_cast<std::size_t>(y), static_cast<std::uint32_t>(y), 0);
    }
    TIFFClose(tiff);
    return file.size();
}

void measure(float rocketRate, double seconds, int rounds) {
    Options options;
    options.width = 1920;
    options.height = 1080;
    options.positions.setPosition(Parameter::RocketBirth, rocketRate);
    ImageBuffer image(options.width, options.height);
    FrameRenderer(options).render(seconds, image);
    const QImage qt = QImage(image.bytes().data(), image.width(), image.height(), QImage::Format_RGBX8888)
                          .convertToFormat(QImage::Format_RGB32);
    const auto rows = packed(image);
    std::printf("1920x1080, rocket rate at %g, %g s into the show; medians of %d\n", static_cast<double>(rocketRate),
                seconds, rounds);
    compare("PNG, Qt", rounds, ours(image, PictureFormat::Png), qts(qt, "png"));
    // Ours has all of its colour there, Qt a quarter: twice the samples.
    compare("JPEG 100 %, Qt", rounds, ours(image, PictureFormat::Jpeg), qts(qt, "jpg", 100));
    compare("JPEG 85 %, Qt", rounds, ours(image, PictureFormat::Jpeg, 0.85), qts(qt, "jpg", 85));
    compare("BMP, Qt", rounds, ours(image, PictureFormat::Bmp), qts(qt, "bmp"));
    for (const int predictor : {PREDICTOR_HORIZONTAL, PREDICTOR_NONE}) {
        compare(predictor == PREDICTOR_NONE ? "TIFF, libtiff, plain" : "TIFF, libtiff", rounds,
                ours(image, PictureFormat::Tiff), [&] { return writeTiff(image, rows, predictor); });
    }
}

} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 21;
    measure(5.0F, 5.5, rounds);
    measure(40.0F, 9.0, rounds);
    return 0;
}
