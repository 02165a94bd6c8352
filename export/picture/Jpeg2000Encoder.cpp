// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/FormatEncoders.h"
#include "export/picture/MemoryFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>

#include <openjpeg.h>

namespace starbloom {

namespace {

using Codec = std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)>;
using Image = std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)>;
using Stream = std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)>;

Error cannotMake(const std::string& why) {
    return Error{"cannot make a JPEG 2000 picture: " + why};
}

struct Failure {
    std::array<char, 256> text{};
};

void onMessage(const char* message, void* failure) {
    auto& text = static_cast<Failure*>(failure)->text;
    if (text[0] == '\0') { // The first one; what follows is its echo.
        const std::size_t length = std::min(std::strcspn(message, "\n"), text.size() - 1);
        std::memcpy(text.data(), message, length);
    }
}

OPJ_SIZE_T onWrite(void* data, OPJ_SIZE_T length, void* file) {
    return static_cast<MemoryFile*>(file)->write(data, length) ? length : static_cast<OPJ_SIZE_T>(-1);
}

OPJ_OFF_T onSkip(OPJ_OFF_T length, void* file) {
    auto& memory = *static_cast<MemoryFile*>(file);
    memory.seek(memory.position() + static_cast<std::size_t>(length));
    return length;
}

OPJ_BOOL onSeek(OPJ_OFF_T position, void* file) {
    static_cast<MemoryFile*>(file)->seek(static_cast<std::size_t>(position));
    return OPJ_TRUE;
}

Image copied(const ImageBuffer& image, std::uint32_t channels) {
    std::array<opj_image_cmptparm_t, 4> layout{};
    for (opj_image_cmptparm_t& each : layout) {
        each.dx = 1;
        each.dy = 1;
        each.w = static_cast<OPJ_UINT32>(image.width());
        each.h = static_cast<OPJ_UINT32>(image.height());
        each.prec = 8;
    }
    Image copy(opj_image_create(channels, layout.data(), OPJ_CLRSPC_SRGB), opj_image_destroy);
    if (copy == nullptr) {
        return copy;
    }
    copy->x1 = layout[0].w;
    copy->y1 = layout[0].h;
    for (std::uint32_t channel = 0; channel < channels; ++channel) {
        const std::uint8_t* from = image.bytes().data() + channel;
        OPJ_INT32* to = copy->comps[channel].data;
        const std::size_t pixels = image.bytes().size() / 4;
        for (std::size_t i = 0; i < pixels; ++i) {
            to[i] = from[4 * i];
        }
    }
    if (channels == 4) {
        copy->comps[3].alpha = 1;
    }
    return copy;
}

/// The share of the picture that is not sky: where neighbours differ.
double litShare(const ImageBuffer& image) {
    std::size_t lit = 0;
    const std::uint8_t* pixel = image.bytes().data();
    const std::size_t pixels = image.bytes().size() / 4;
    for (std::size_t i = 1; i < pixels; ++i, pixel += 4) {
        lit += std::memcmp(pixel, pixel + 4, 3) != 0 ? 1 : 0;
    }
    return std::max(static_cast<double>(lit) / static_cast<double>(pixels), 0.001);
}

/// The ratio of signal to noise, in decibels over the whole picture, that a quality stands for. What a person judges is
/// the lit part, so the same noise there is asked for however much black there is around it.
double signalToNoise(const ImageBuffer& image, double quality) {
    constexpr double lowest = 24.0;
    constexpr double highest = 50.0;
    return lowest + (highest - lowest) * quality - 10.0 * std::log10(litShare(image));
}

opj_cparameters_t parametersFor(const ImageBuffer& image, double quality) {
    opj_cparameters_t parameters{};
    opj_set_default_encoder_parameters(&parameters);
    parameters.irreversible = 1;
    parameters.tcp_mct = 1;
    parameters.tcp_numlayers = 1;
    parameters.cp_fixed_quality = OPJ_TRUE;
    parameters.tcp_distoratio[0] = static_cast<float>(signalToNoise(image, quality));
    while (parameters.numresolution > 1 &&
           std::min(image.width(), image.height()) >> (parameters.numresolution - 1) == 0) {
        --parameters.numresolution;
    }
    return parameters;
}

bool encode(opj_codec_t* codec, opj_cparameters_t& parameters, opj_image_t* image, MemoryFile& file) {
    const Stream stream(opj_stream_create(std::size_t{1} << 20U, OPJ_FALSE), opj_stream_destroy);
    if (stream == nullptr) {
        return false;
    }
    opj_stream_set_write_function(stream.get(), onWrite);
    opj_stream_set_skip_function(stream.get(), onSkip);
    opj_stream_set_seek_function(stream.get(), onSeek);
    opj_stream_set_user_data(stream.get(), &file, nullptr);
    return opj_setup_encoder(codec, &parameters, image) != 0 && opj_start_compress(codec, image, stream.get()) != 0 &&
           opj_encode(codec, stream.get()) != 0 && opj_end_compress(codec, stream.get()) != 0;
}

} // namespace

Result<std::vector<std::byte>> encodeJpeg2000(const ImageBuffer& image, double quality, bool alpha,
                                              const std::string& comment) {
    if (image.width() < 1 || image.height() < 1) {
        return cannotMake("the picture has no pixels");
    }
    Failure failure;
    const Codec codec(opj_create_compress(OPJ_CODEC_JP2), opj_destroy_codec);
    const Image source = copied(image, alpha ? 4 : 3);
    if (codec == nullptr || source == nullptr) {
        return cannotMake("out of memory");
    }
    opj_set_error_handler(codec.get(), onMessage, &failure);
    opj_cparameters_t parameters = parametersFor(image, quality);
    std::string text = comment; // The library copies it, but asks for one that can be written to.
    parameters.cp_comment = text.data();
    MemoryFile file;
    if (!encode(codec.get(), parameters, source.get(), file)) {
        return cannotMake(failure.text[0] != '\0' ? failure.text.data() : "out of memory");
    }
    return file.take();
}

} // namespace starbloom
