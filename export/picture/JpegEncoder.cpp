// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/ColorProfile.h"
#include "export/picture/FormatEncoders.h"
#include "export/picture/MemoryFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

// libjpeg leaves a failed call by an exit function that must not return, hence a longjmp, which skips destructors.
// Therefore everything that owns memory lives in encodeStrip() and above, and the function with the setjmp holds plain
// values only.
//
// A large picture is cut into strips of whole rows of blocks, which are compressed as files of their own by any number
// of threads. Where a strip ends, the coder starts afresh, which is just what a restart marker announces to a decoder;
// so the coded data of the strips with such markers between them, behind the header of the first strip with the height
// of the whole, are one ordinary file. The cuts depend on the size alone, and so does every byte.

namespace starbloom {

namespace {

constexpr double fullColourFrom = 0.9;

/// Sixteen strips at 1920 x 1080, so that many threads find work; to start them all costs a few per cent. The restart
/// interval must fit in 16 bits, and a strip has 2048 units at most, or one row of at most 8188.
constexpr int stripPixels = 1 << 17;

/// A segment is a marker of two bytes, its length in two more, and what it tells.
constexpr std::byte frameMarker{0xC0};
constexpr std::byte scanMarker{0xDA};
constexpr std::size_t heightInFrame = 5;
constexpr std::size_t startMarkerSize = 2;
constexpr unsigned restartMarkers = 8;

using Bytes = std::vector<std::byte>;

/// What all strips of a picture have in common.
struct JpegPlan {
    const ImageBuffer& image;
    const std::string& comment;
    Bytes profile;
    int quality = 100; ///< 1 to 100.
    bool hasFullColour = true;
    int stripRows = 0;            ///< Pixels; the last strip may have fewer.
    unsigned restartInterval = 0; ///< Units that are coded together, per strip; 0 for a single strip.

    int stripCount() const { return stripRows < image.height() ? (image.height() - 1) / stripRows + 1 : 1; }
};

struct JpegWriting {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr handler{};
    jpeg_destination_mgr destination{};
    std::array<JOCTET, 65536> buffer{};
    MemoryFile output;
    const JpegPlan& plan;
    int firstRow;
    int rows;
    std::array<char, JMSG_LENGTH_MAX> failure{};
    std::jmp_buf returnPoint{};

    JpegWriting(const JpegPlan& toWrite, int strip)
        : plan(toWrite)
        , firstRow(strip * toWrite.stripRows)
        , rows(std::min(toWrite.stripRows, toWrite.image.height() - firstRow)) {}

    JpegWriting(const JpegWriting&) = delete;
    JpegWriting& operator=(const JpegWriting&) = delete;

    ~JpegWriting() { jpeg_destroy_compress(&jpeg); }
};

JpegWriting& writingOf(j_common_ptr jpeg) {
    return *static_cast<JpegWriting*>(jpeg->client_data);
}

[[noreturn]] void onJpegError(j_common_ptr jpeg) {
    auto& writing = writingOf(jpeg);
    jpeg->err->format_message(jpeg, writing.failure.data());
    std::longjmp(writing.returnPoint, 1);
}

void onJpegMessage(j_common_ptr /*jpeg*/) {}

[[noreturn]] void failForMemory(JpegWriting& writing) {
    std::snprintf(writing.failure.data(), writing.failure.size(), "out of memory");
    std::longjmp(writing.returnPoint, 1);
}

void startBuffer(j_compress_ptr jpeg) {
    auto& writing = writingOf(reinterpret_cast<j_common_ptr>(jpeg));
    writing.destination.next_output_byte = writing.buffer.data();
    writing.destination.free_in_buffer = writing.buffer.size();
}

boolean emptyBuffer(j_compress_ptr jpeg) {
    auto& writing = writingOf(reinterpret_cast<j_common_ptr>(jpeg));
    if (!writing.output.write(writing.buffer.data(), writing.buffer.size())) {
        failForMemory(writing);
    }
    startBuffer(jpeg);
    return TRUE;
}

void flushBuffer(j_compress_ptr jpeg) {
    auto& writing = writingOf(reinterpret_cast<j_common_ptr>(jpeg));
    if (!writing.output.write(writing.buffer.data(), writing.buffer.size() - writing.destination.free_in_buffer)) {
        failForMemory(writing);
    }
}

/// A coarse step for the mean of a block makes the black sky grey, unless black is a whole number of steps away from
/// the middle: 1024 is, for powers of two.
void keepBlackBlack(jpeg_compress_struct& jpeg) {
    UINT16& step = jpeg.quant_tbl_ptrs[0]->quantval[0];
    step = std::bit_floor(step);
}

/// The usual table for colour is made for photographs and turns small coloured sparks grey, so its steps are taken
/// finer; there are few of them to pay for, as colour has a quarter of the samples.
void keepColour(jpeg_compress_struct& jpeg) {
    for (UINT16& step : jpeg.quant_tbl_ptrs[1]->quantval) {
        step = static_cast<UINT16>(std::max(step * 2 / 5, 1));
    }
}

void setUp(JpegWriting& writing) {
    jpeg_compress_struct& jpeg = writing.jpeg;
    jpeg_create_compress(&jpeg);
    writing.destination.init_destination = startBuffer;
    writing.destination.empty_output_buffer = emptyBuffer;
    writing.destination.term_destination = flushBuffer;
    jpeg.dest = &writing.destination;
    jpeg.image_width = static_cast<JDIMENSION>(writing.plan.image.width());
    jpeg.image_height = static_cast<JDIMENSION>(writing.rows);
    jpeg.input_components = ImageBuffer::channels;
    jpeg.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, writing.plan.quality, TRUE);
    keepBlackBlack(jpeg);
    if (!writing.plan.hasFullColour) {
        keepColour(jpeg);
    }
    jpeg.comp_info[0].h_samp_factor = writing.plan.hasFullColour ? 1 : 2;
    jpeg.comp_info[0].v_samp_factor = writing.plan.hasFullColour ? 1 : 2;
    jpeg.restart_interval = writing.plan.restartInterval;
}

void writeNotes(JpegWriting& writing) {
    const JpegPlan& plan = writing.plan;
    jpeg_write_icc_profile(&writing.jpeg, reinterpret_cast<const JOCTET*>(plan.profile.data()),
                           static_cast<unsigned>(plan.profile.size()));
    if (!plan.comment.empty()) {
        jpeg_write_marker(&writing.jpeg, JPEG_COM, reinterpret_cast<const JOCTET*>(plan.comment.data()),
                          static_cast<unsigned>(plan.comment.size()));
    }
}

void writeJpeg(JpegWriting& writing) {
    setUp(writing);
    jpeg_compress_struct& jpeg = writing.jpeg;
    jpeg_start_compress(&jpeg, TRUE);
    if (writing.firstRow == 0) {
        writeNotes(writing);
    }
    while (jpeg.next_scanline < jpeg.image_height) {
        const int y = writing.firstRow + static_cast<int>(jpeg.next_scanline);
        auto* row = const_cast<JSAMPROW>(writing.plan.image.row(y));
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
}

bool tryToWrite(JpegWriting& writing) {
    if (setjmp(writing.returnPoint) != 0) {
        return false;
    }
    writeJpeg(writing);
    return true;
}

Result<Bytes> encodeStrip(const JpegPlan& plan, int strip) {
    JpegWriting writing(plan, strip);
    writing.jpeg.err = jpeg_std_error(&writing.handler);
    writing.jpeg.client_data = &writing;
    writing.handler.error_exit = onJpegError;
    writing.handler.output_message = onJpegMessage;
    if (!tryToWrite(writing)) {
        return Error{std::string("cannot make a JPEG: ") + writing.failure.data()};
    }
    return writing.output.take();
}

std::vector<Result<Bytes>> encodeStrips(const JpegPlan& plan) {
    std::vector<Result<Bytes>> strips(static_cast<std::size_t>(plan.stripCount()), Bytes());
    // Without the isolation this thread, while it waits for others, could start on another picture.
    oneapi::tbb::this_task_arena::isolate([&] {
        oneapi::tbb::parallel_for(0, plan.stripCount(), [&](int strip) {
            strips[static_cast<std::size_t>(strip)] = encodeStrip(plan, strip);
        });
    });
    return strips;
}

/// With the marker.
std::size_t segmentSize(const Bytes& file, std::size_t at) {
    return 2 + 256 * std::to_integer<std::size_t>(file[at + 2]) + std::to_integer<std::size_t>(file[at + 3]);
}

/// Where the segment with the marker begins in a file of our own making, which has it.
std::size_t findSegment(const Bytes& file, std::byte marker) {
    std::size_t at = startMarkerSize;
    while (file[at + 1] != marker) {
        at += segmentSize(file, at);
    }
    return at;
}

void setHeight(Bytes& file, int height) {
    const std::size_t at = findSegment(file, frameMarker) + heightInFrame;
    file[at] = static_cast<std::byte>(height >> 8);
    file[at + 1] = static_cast<std::byte>(height & 0xFF);
}

/// The end of the file so far makes way for a restart and the coded data of the next strip, up to the end of that.
void append(Bytes& file, const Bytes& next, std::size_t strip) {
    file.end()[-1] = static_cast<std::byte>(JPEG_RST0 + (strip - 1) % restartMarkers);
    const std::size_t scan = findSegment(next, scanMarker);
    file.insert(file.end(), next.begin() + static_cast<std::ptrdiff_t>(scan + segmentSize(next, scan)), next.end());
}

Result<Bytes> join(std::vector<Result<Bytes>> strips, int height) {
    std::size_t size = 0;
    for (const auto& strip : strips) {
        if (!strip) {
            return strip.error();
        }
        size += strip.value().size();
    }
    Bytes file = std::move(strips.front()).value();
    file.reserve(size);
    setHeight(file, height);
    for (std::size_t strip = 1; strip < strips.size(); ++strip) {
        append(file, strips[strip].value(), strip);
    }
    return file;
}

/// The height of a strip of a picture with units of so many pixels in both directions.
int stripRowsOf(const ImageBuffer& image, int unit) {
    if (image.width() == 0 || image.height() > JPEG_MAX_DIMENSION) {
        return image.height(); // One strip, which the library refuses in its own words.
    }
    return std::max(stripPixels / (image.width() * unit), 1) * unit;
}

} // namespace

Result<std::vector<std::byte>> encodeJpeg(const ImageBuffer& image, double quality, const std::string& comment) {
    JpegPlan plan{image, comment, srgbProfile()};
    plan.quality = static_cast<int>(std::lround(std::clamp(quality, 0.01, 1.0) * 100.0));
    plan.hasFullColour = quality >= fullColourFrom;
    const int unit = plan.hasFullColour ? DCTSIZE : 2 * DCTSIZE;
    plan.stripRows = stripRowsOf(image, unit);
    if (plan.stripCount() > 1) {
        plan.restartInterval = static_cast<unsigned>((image.width() + unit - 1) / unit * (plan.stripRows / unit));
    }
    return join(encodeStrips(plan), image.height());
}

} // namespace starbloom
