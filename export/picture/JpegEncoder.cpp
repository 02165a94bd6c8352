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

// libjpeg leaves a failed call by an exit function that must not return, hence a longjmp, which skips destructors.
// Therefore everything that owns memory lives in encodeJpeg(), and the function with the setjmp holds plain values
// only.

namespace starbloom {

namespace {

constexpr double fullColourFrom = 0.9;

struct JpegWriting {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr handler{};
    jpeg_destination_mgr destination{};
    std::array<JOCTET, 65536> buffer{};
    MemoryFile output;
    const ImageBuffer* image = nullptr;
    int quality = 100;
    bool hasFullColour = true;
    std::vector<std::byte> profile;
    const std::string* comment = nullptr;
    std::array<char, JMSG_LENGTH_MAX> failure{};
    std::jmp_buf returnPoint{};

    JpegWriting() = default;
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
    jpeg.image_width = static_cast<JDIMENSION>(writing.image->width());
    jpeg.image_height = static_cast<JDIMENSION>(writing.image->height());
    jpeg.input_components = ImageBuffer::channels;
    jpeg.in_color_space = JCS_EXT_RGBX;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, writing.quality, TRUE);
    keepBlackBlack(jpeg);
    if (!writing.hasFullColour) {
        keepColour(jpeg);
    }
    jpeg.comp_info[0].h_samp_factor = writing.hasFullColour ? 1 : 2;
    jpeg.comp_info[0].v_samp_factor = writing.hasFullColour ? 1 : 2;
}

void writeJpeg(JpegWriting& writing) {
    setUp(writing);
    jpeg_compress_struct& jpeg = writing.jpeg;
    jpeg_start_compress(&jpeg, TRUE);
    jpeg_write_icc_profile(&jpeg, reinterpret_cast<const JOCTET*>(writing.profile.data()),
                           static_cast<unsigned>(writing.profile.size()));
    if (!writing.comment->empty()) {
        jpeg_write_marker(&jpeg, JPEG_COM, reinterpret_cast<const JOCTET*>(writing.comment->data()),
                          static_cast<unsigned>(writing.comment->size()));
    }
    while (jpeg.next_scanline < jpeg.image_height) {
        auto* row = const_cast<JSAMPROW>(writing.image->row(static_cast<int>(jpeg.next_scanline)));
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

} // namespace

Result<std::vector<std::byte>> encodeJpeg(const ImageBuffer& image, double quality, const std::string& comment) {
    JpegWriting writing;
    writing.image = &image;
    writing.quality = static_cast<int>(std::lround(std::clamp(quality, 0.01, 1.0) * 100.0));
    writing.hasFullColour = quality >= fullColourFrom;
    writing.profile = srgbProfile();
    writing.comment = &comment;
    writing.jpeg.err = jpeg_std_error(&writing.handler);
    writing.jpeg.client_data = &writing;
    writing.handler.error_exit = onJpegError;
    writing.handler.output_message = onJpegMessage;
    if (!tryToWrite(writing)) {
        return Error{std::string("cannot make a JPEG: ") + writing.failure.data()};
    }
    return writing.output.take();
}

} // namespace starbloom
