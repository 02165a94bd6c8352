// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipPixels.h"
#include "export/clip/FormatWriters.h"

#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

class RgbaClipWriter final : public ClipWriter {
public:
    RgbaClipWriter(ClipOutput output, AlphaMode alpha)
        : m_output(std::move(output))
        , m_alpha(alpha) {}

    Result<void> add(const ImageBuffer& frame) override {
        if (m_alpha == AlphaMode::Opaque) {
            return m_output.write(std::as_bytes(frame.bytes())); // Copying it first took longer than drawing it.
        }
        m_frame = frame;
        applyAlpha(m_frame, m_alpha);
        return m_output.write(std::as_bytes(m_frame.bytes()));
    }

    Result<void> finish() override { return m_output.finish(); }

private:
    ClipOutput m_output;
    AlphaMode m_alpha;
    ImageBuffer m_frame; ///< Kept for its memory.
};

class Y4mClipWriter final : public ClipWriter {
public:
    Y4mClipWriter(ClipOutput output, const ClipSettings& settings)
        : m_output(std::move(output))
        , m_matrix(matrixFor(settings.height))
        , m_width(static_cast<std::size_t>(settings.width + 1) / 2 * 2)
        , m_height(static_cast<std::size_t>(settings.height + 1) / 2 * 2) {
        // The size never changes, so the start of a frame can stay where it is.
        const std::string_view mark = "FRAME\n";
        m_frame.resize(mark.size() + m_width * m_height * 3 / 2);
        mark.copy(reinterpret_cast<char*>(m_frame.data()), mark.size());
        m_planes.luma = m_frame.data() + mark.size();
        m_planes.lumaStride = static_cast<std::ptrdiff_t>(m_width);
        m_planes.blue = m_planes.luma + m_width * m_height;
        m_planes.red = m_planes.blue + m_width * m_height / 4;
        m_planes.chromaStride = static_cast<std::ptrdiff_t>(m_width / 2);
    }

    Result<void> writeHeader(const FrameRate& rate) {
        const std::string header = "YUV4MPEG2 W" + std::to_string(m_width) + " H" + std::to_string(m_height) + " F" +
                                   std::to_string(rate.frames) + ":" + std::to_string(rate.seconds) +
                                   " Ip A1:1 C420mpeg2 XYSCSS=420MPEG2 XCOLORRANGE=LIMITED\n";
        return m_output.write(std::as_bytes(std::span(header)));
    }

    Result<void> add(const ImageBuffer& frame) override {
        convertToYuv(frame, m_matrix, m_planes);
        return m_output.write(std::as_bytes(std::span(m_frame)));
    }

    Result<void> finish() override { return m_output.finish(); }

private:
    ClipOutput m_output;
    YuvMatrix m_matrix;
    std::size_t m_width;
    std::size_t m_height;
    std::vector<std::uint8_t> m_frame;
    YuvPlanes m_planes; ///< Within the frame.
};

} // namespace

MadeClipWriter makeRawClipWriter(ClipFormat format, ClipOutput output, const ClipSettings& settings) {
    if (format == ClipFormat::Rgba) {
        return std::unique_ptr<ClipWriter>(std::make_unique<RgbaClipWriter>(std::move(output), settings.alpha));
    }
    auto writer = std::make_unique<Y4mClipWriter>(std::move(output), settings);
    if (auto begun = writer->writeHeader(settings.rate); !begun) {
        return begun.error();
    }
    return std::unique_ptr<ClipWriter>(std::move(writer));
}

} // namespace starbloom
