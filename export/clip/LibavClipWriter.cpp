// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipContainer.h"
#include "export/clip/ClipPixels.h"
#include "export/clip/FormatWriters.h"
#include "export/movie/LibavSupport.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

extern "C" {
#include <libavutil/opt.h>
}

namespace starbloom {

namespace {

using Setting = std::pair<const char*, std::string>;

/// How one of the formats is asked for.
struct LibavRecipe {
    const char* codec = nullptr;
    ContainerKind container = ContainerKind::WebM;
    AVPixelFormat pixels = AV_PIX_FMT_NONE;
    int threadType = 0;
    int quantizer = 0; ///< The same for all frames; 0: the encoder chooses.
    std::vector<Setting> settings;
};

LibavRecipe proResRecipe(const ClipSettings& settings) {
    const bool alpha = settings.alpha != AlphaMode::Opaque;
    LibavRecipe recipe;
    recipe.codec = "prores_ks";
    recipe.container = ContainerKind::QuickTime;
    recipe.pixels = alpha ? AV_PIX_FMT_YUVA444P10 : AV_PIX_FMT_YUV444P10;
    recipe.threadType = FF_THREAD_SLICE;
    // Files become as large as by the encoder's own search for the usual rate, in 40 % of its time and with 1 dB more.
    recipe.quantizer = 1;
    // Alpha is stored without loss; frames have no more than eight bits of it.
    recipe.settings = {{"profile", "4444"}, {"alpha_bits", "8"}};
    return recipe;
}

LibavRecipe vp9Recipe(const ClipSettings& settings) {
    const bool alpha = settings.alpha != AlphaMode::Opaque;
    LibavRecipe recipe;
    recipe.codec = "libvpx-vp9";
    recipe.container = ContainerKind::WebM;
    recipe.pixels = alpha ? AV_PIX_FMT_YUVA420P : AV_PIX_FMT_YUV420P;
    // From the best that makes a difference to the worst that there is.
    const auto rateFactor = std::lround(4.0 + 59.0 * (1.0 - settings.quality));
    recipe.settings = {{"crf", std::to_string(rateFactor)}, {"deadline", "good"}, {"cpu-used", "3"}, {"row-mt", "1"}};
    if (alpha) {
        recipe.settings.emplace_back("auto-alt-ref", "0"); // Frames that are never shown have no alpha.
    }
    return recipe;
}

void describeColors(AVCodecContext& encoder, YuvMatrix matrix) {
    const bool highDefinition = matrix == YuvMatrix::Bt709;
    encoder.color_range = AVCOL_RANGE_MPEG;
    encoder.color_primaries = highDefinition ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    encoder.color_trc = highDefinition ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
    encoder.colorspace = highDefinition ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    encoder.chroma_sample_location = AVCHROMA_LOC_LEFT;
}

/// The encoder, the container, and the file in which it grows.
class LibavClipWriter final : public ClipWriter {
public:
    LibavClipWriter(ClipFormat format, ClipOutput output, const ClipSettings& settings)
        : m_format(format)
        , m_output(std::move(output))
        , m_settings(settings)
        , m_matrix(matrixFor(settings.height)) {}

    Result<void> open();
    Result<void> add(const ImageBuffer& frame) override;
    Result<void> finish() override;

private:
    Result<void> openEncoder(const LibavRecipe& recipe);
    Result<void> makeFrame();
    Result<void> openContainer(ContainerKind kind);
    Result<void> send(const AVFrame* frame);

    Error failure(int averror) const { return m_output.failure(reasonOf(averror)); }

    ClipFormat m_format;
    ClipOutput m_output;
    ClipSettings m_settings;
    YuvMatrix m_matrix;
    EncoderPointer m_encoder;
    FramePointer m_frame;
    PacketPointer m_packet;
    std::optional<ClipContainer> m_container;
    std::int64_t m_frameCount = 0;
};

Result<void> LibavClipWriter::open() {
    forwardLibavLog();
    const LibavRecipe recipe = m_format == ClipFormat::ProRes ? proResRecipe(m_settings) : vp9Recipe(m_settings);
    if (auto opened = openEncoder(recipe); !opened) {
        return opened;
    }
    if (auto made = makeFrame(); !made) {
        return made;
    }
    return openContainer(recipe.container);
}

Result<void> LibavClipWriter::openEncoder(const LibavRecipe& recipe) {
    const AVCodec* codec = avcodec_find_encoder_by_name(recipe.codec);
    if (codec == nullptr) {
        return m_output.failure(std::string("the encoder ") + recipe.codec + " is missing");
    }
    m_encoder.reset(avcodec_alloc_context3(codec));
    if (m_encoder == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    m_encoder->width = m_settings.width;
    m_encoder->height = m_settings.height;
    m_encoder->pix_fmt = recipe.pixels;
    m_encoder->bit_rate = 0; // The quality counts.
    if (recipe.quantizer > 0) {
        m_encoder->flags |= AV_CODEC_FLAG_QSCALE;
        m_encoder->global_quality = recipe.quantizer * FF_QP2LAMBDA;
    }
    m_encoder->sample_aspect_ratio = {1, 1};
    m_encoder->time_base = {m_settings.rate.seconds, m_settings.rate.frames};
    m_encoder->framerate = av_inv_q(m_encoder->time_base);
    m_encoder->thread_count = encoderThreads(m_settings.threads);
    m_encoder->thread_type = recipe.threadType;
    // Bit-exact: no versions of libraries in the file.
    m_encoder->flags |= AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_GLOBAL_HEADER;
    describeColors(*m_encoder, m_matrix);
    for (const auto& [name, value] : recipe.settings) {
        if (const int error = av_opt_set(m_encoder->priv_data, name, value.c_str(), 0); error < 0) {
            return failure(error);
        }
    }
    const int error = avcodec_open2(m_encoder.get(), codec, nullptr);
    return error < 0 ? failure(error) : Result<void>();
}

Result<void> LibavClipWriter::makeFrame() {
    m_packet.reset(av_packet_alloc());
    m_frame.reset(av_frame_alloc());
    if (m_packet == nullptr || m_frame == nullptr) {
        return failure(AVERROR(ENOMEM));
    }
    m_frame->format = m_encoder->pix_fmt;
    m_frame->width = m_encoder->width;
    m_frame->height = m_encoder->height;
    m_frame->color_range = m_encoder->color_range;
    m_frame->color_primaries = m_encoder->color_primaries;
    m_frame->color_trc = m_encoder->color_trc;
    m_frame->colorspace = m_encoder->colorspace;
    const int error = av_frame_get_buffer(m_frame.get(), 0);
    return error < 0 ? failure(error) : Result<void>();
}

Result<void> LibavClipWriter::openContainer(ContainerKind kind) {
    const PointerTo<AVCodecParameters, avcodec_parameters_free> parameters(avcodec_parameters_alloc());
    if (parameters == nullptr || avcodec_parameters_from_context(parameters.get(), m_encoder.get()) < 0) {
        return failure(AVERROR(ENOMEM));
    }
    const bool hasAlpha = m_settings.alpha != AlphaMode::Opaque;
    if (m_format == ClipFormat::ProRes && hasAlpha) {
        // How QuickTime tells of alpha: eight bits more than colour alone.
        parameters->bits_per_coded_sample = 32;
    }
    auto container = ClipContainer::open(m_output.temporaryPath(), kind, *parameters, m_settings.rate, hasAlpha);
    if (!container) {
        return m_output.failure(container.error().message);
    }
    m_container = std::move(container).value();
    return {};
}

Result<void> LibavClipWriter::add(const ImageBuffer& frame) {
    if (const int error = av_frame_make_writable(m_frame.get()); error < 0) {
        return failure(error);
    }
    ClipPlanes planes;
    for (std::size_t plane = 0; plane < planes.data.size(); ++plane) {
        planes.data[plane] = m_frame->data[plane];
        planes.strides[plane] = m_frame->linesize[plane];
    }
    const auto convert = m_format == ClipFormat::ProRes ? convertToYuva444 : convertToYuva420;
    convert(frame, m_settings.alpha, m_matrix, planes);
    m_frame->pts = m_frameCount++;
    return send(m_frame.get());
}

/// Hands a frame to the encoder, or none for the end, and writes all packets that are ready.
Result<void> LibavClipWriter::send(const AVFrame* frame) {
    Result<void> written;
    const int error = encodeFrame(*m_encoder, frame, *m_packet, [&](AVPacket& packet) {
        written = m_container->write(packet);
        return static_cast<bool>(written);
    });
    if (error < 0) {
        return failure(error);
    }
    return written ? written : m_output.failure(written.error().message);
}

Result<void> LibavClipWriter::finish() {
    if (auto sent = send(nullptr); !sent) {
        return sent;
    }
    auto finished = m_container->finish();
    return finished ? m_output.finish() : m_output.failure(finished.error().message);
}

} // namespace

MadeClipWriter makeLibavClipWriter(ClipFormat format, ClipOutput output, const ClipSettings& settings) {
    auto writer = std::make_unique<LibavClipWriter>(format, std::move(output), settings);
    if (auto opened = writer->open(); !opened) {
        return opened.error();
    }
    return std::unique_ptr<ClipWriter>(std::move(writer));
}

} // namespace starbloom
