// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieEncoder.h"

#include <algorithm>
#include <string>
#include <utility>

extern "C" {
#include <libavutil/cpu.h>
#include <libavutil/opt.h>
}

namespace starbloom {

namespace {

/// The largest side that the encoder takes.
constexpr int largestSide = 16384;
constexpr int highestRate = 1000;

/// From this height on, players expect the colours of high definition.
constexpr int highDefinitionHeight = 720;

// Chosen on shells of thousands of soft glows on black, by looking at the dark parts brightened and by numbers, which
// docs/movies.md holds:
// - crf 16 keeps the densest show that the sliders can ask for above an SSIM of 0.98; at 18 it has 0.97;
// - aq-mode 3 gives dark, flat regions more bits, which is where fireworks have their halos;
// - psy off, because it invents texture to please the eye, and a glow has none;
// - small remains are not dropped, or faint halos would end at the edges of blocks;
// - chroma-qp-offset -3, because sparks are coloured and most of what is lost is lost in the colours;
// - deblocking a little stronger, as there is no texture that it could blur;
// - half of the usual looking ahead changes nothing but what a killed program loses.
constexpr const char* preset = "medium";
constexpr const char* constantRateFactor = "16";
constexpr const char* encoderSettings =
    "aq-mode=3:psy=0:no-dct-decimate=1:chroma-qp-offset=-3:deblock=1,1:rc-lookahead=20";

/// x264's tree of macroblocks reads memory that it has not written where it works with AVX-512: with version 164, the
/// same frames gave other bytes from run to run. Without, it is as quick.
constexpr const char* withoutAvx512 = ":asm=SSE2Fast,LZCNT,SSE4.2,AVX2,BMI2";

std::string settingsForThisMachine() {
    const bool hasAvx512 = (av_get_cpu_flags() & AV_CPU_FLAG_AVX512) != 0;
    return std::string(encoderSettings) + (hasAvx512 ? withoutAvx512 : "");
}

int evenSide(int side) {
    return (side + 1) / 2 * 2;
}

Result<void> check(const MovieFormat& format) {
    const auto sideFits = [](int side) { return side >= 1 && side <= largestSide; };
    if (!sideFits(format.width) || !sideFits(format.height)) {
        return Error{"a movie of " + std::to_string(format.width) + " x " + std::to_string(format.height) +
                     " pixels is not possible; each side may have 1 to " + std::to_string(largestSide)};
    }
    if (format.framesPerSecond < 1 || format.framesPerSecond > highestRate) {
        return Error{"a movie of " + std::to_string(format.framesPerSecond) +
                     " frames per second is not possible; it may have 1 to " + std::to_string(highestRate)};
    }
    return {};
}

void describeColors(AVCodecContext& encoder, YuvMatrix matrix) {
    const bool highDefinition = matrix == YuvMatrix::Bt709;
    encoder.color_range = AVCOL_RANGE_MPEG;
    encoder.color_primaries = highDefinition ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    encoder.color_trc = highDefinition ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
    encoder.colorspace = highDefinition ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    encoder.chroma_sample_location = AVCHROMA_LOC_LEFT;
}

Error failure(int averror) {
    return Error{reasonOf(averror)};
}

} // namespace

MovieEncoder::MovieEncoder(const MovieFormat& format)
    : m_format(format)
    , m_matrix(format.height >= highDefinitionHeight ? YuvMatrix::Bt709 : YuvMatrix::Bt601) {}

Result<MovieEncoder> MovieEncoder::open(const MovieFormat& format) {
    forwardLibavLog();
    if (auto possible = check(format); !possible) {
        return possible.error();
    }
    MovieEncoder encoder(format);
    if (auto opened = encoder.openContext(); !opened) {
        return opened.error();
    }
    if (auto made = encoder.makeFrame(); !made) {
        return made.error();
    }
    return encoder;
}

Result<void> MovieEncoder::openContext() {
    const AVCodec* codec = avcodec_find_encoder_by_name("libx264");
    if (codec == nullptr) {
        return Error{"the H.264 encoder is missing"};
    }
    m_context.reset(avcodec_alloc_context3(codec));
    if (m_context == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    m_context->width = evenSide(m_format.width);
    m_context->height = evenSide(m_format.height);
    m_context->pix_fmt = AV_PIX_FMT_YUV420P;
    m_context->sample_aspect_ratio = {1, 1};
    m_context->time_base = {1, m_format.framesPerSecond};
    m_context->framerate = {m_format.framesPerSecond, 1};
    m_context->thread_count = encoderThreads(m_format.threads);
    // The container wants the stream's parameters in front. Bit-exact: no versions of libraries in the stream.
    m_context->flags |= AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_GLOBAL_HEADER;
    describeColors(*m_context, m_matrix);
    const std::string settings = settingsForThisMachine();
    using Setting = std::pair<const char*, const char*>;
    for (const auto& [name, value] :
         {Setting{"preset", preset}, Setting{"crf", constantRateFactor}, Setting{"x264-params", settings.c_str()}}) {
        if (const int error = av_opt_set(m_context->priv_data, name, value, 0); error < 0) {
            return failure(error);
        }
    }
    if (const int error = avcodec_open2(m_context.get(), codec, nullptr); error < 0) {
        return failure(error);
    }
    return {};
}

Result<void> MovieEncoder::makeFrame() {
    m_packet.reset(av_packet_alloc());
    m_frame.reset(av_frame_alloc());
    if (m_packet == nullptr || m_frame == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    m_frame->format = m_context->pix_fmt;
    m_frame->width = m_context->width;
    m_frame->height = m_context->height;
    if (const int error = av_frame_get_buffer(m_frame.get(), 0); error < 0) {
        return failure(error);
    }
    return {};
}

Result<void> MovieEncoder::encode(const ImageBuffer& image, const PacketSink& sink) {
    if (image.width() != m_format.width || image.height() != m_format.height) {
        return Error{"a frame has " + std::to_string(image.width()) + " x " + std::to_string(image.height()) +
                     " pixels instead of " + std::to_string(m_format.width) + " x " + std::to_string(m_format.height)};
    }
    // The encoder copies the planes before it returns, so this one frame is always free again and nothing is copied
    // here.
    if (const int error = av_frame_make_writable(m_frame.get()); error < 0) {
        return failure(error);
    }
    YuvPlanes planes;
    planes.luma = m_frame->data[0];
    planes.lumaStride = m_frame->linesize[0];
    planes.blue = m_frame->data[1];
    planes.red = m_frame->data[2];
    planes.chromaStride = m_frame->linesize[1];
    convertToYuv(image, m_matrix, planes);
    m_frame->pts = m_frameCount++;
    return send(m_frame.get(), sink);
}

Result<void> MovieEncoder::drain(const PacketSink& sink) {
    return send(nullptr, sink);
}

/// Hands a frame to the encoder, or none for the end, and passes all packets on that are ready.
Result<void> MovieEncoder::send(const AVFrame* frame, const PacketSink& sink) {
    Result<void> taken;
    const int error = encodeFrame(*m_context, frame, *m_packet, [&](AVPacket& packet) {
        // Said here, so that the container need not guess how long the last frame lasts.
        packet.duration = 1;
        taken = sink(packet);
        return static_cast<bool>(taken);
    });
    return error < 0 ? failure(error) : taken;
}

} // namespace starbloom
