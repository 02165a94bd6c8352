// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/picturesize/PictureFile.h"
#include "shell/picturesize/PictureSize.h"

#include <memory>
#include <openjpeg.h>

namespace starbloom {

PixelSize jpeg2000Size(const PictureFile& file, bool bare) {
    const std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)> stream(
        opj_stream_create_default_file_stream(file.path().c_str(), OPJ_STREAM_READ), &opj_stream_destroy);
    const std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)> codec(
        opj_create_decompress(bare ? OPJ_CODEC_J2K : OPJ_CODEC_JP2), &opj_destroy_codec);
    opj_dparameters_t parameters;
    opj_set_default_decoder_parameters(&parameters);
    opj_image_t* header = nullptr;
    if (stream == nullptr || codec == nullptr || opj_setup_decoder(codec.get(), &parameters) != OPJ_TRUE ||
        opj_read_header(stream.get(), codec.get(), &header) != OPJ_TRUE) {
        return {};
    }
    const std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)> image(header, &opj_image_destroy);
    return {static_cast<std::int64_t>(image->x1) - image->x0, static_cast<std::int64_t>(image->y1) - image->y0};
}

} // namespace starbloom
