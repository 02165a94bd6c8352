// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipWriter.h"

#include "export/clip/FormatWriters.h"

#include <string>
#include <utility>

namespace starbloom {

namespace {

constexpr double highestRate = 1000.0;

Result<void> checkAlpha(const ClipTraits& traits, AlphaMode alpha) {
    if (alpha != AlphaMode::Opaque && !traits.hasAlpha) {
        return Error{std::string(traits.name) + " has no transparency"};
    }
    if (alpha == AlphaMode::Premultiplied && !traits.hasPremultiplied) {
        return Error{std::string(traits.name) + " always has straight alpha"};
    }
    return {};
}

Result<void> check(const ClipTraits& traits, const ClipDestination& destination, const ClipSettings& settings) {
    const auto sideFits = [&](int side) { return side >= 1 && side <= traits.largestSide; };
    if (!sideFits(settings.width) || !sideFits(settings.height)) {
        return Error{std::to_string(settings.width) + " x " + std::to_string(settings.height) +
                     " pixels are not possible; each side may have 1 to " + std::to_string(traits.largestSide)};
    }
    const FrameRate& rate = settings.rate;
    if (rate.frames < 1 || rate.seconds < 1 || rate.perSecond() < 1.0 || rate.perSecond() > highestRate ||
        rate.seconds > 0xFFFF || rate.frames > 0xFFFF) {
        return Error{std::to_string(rate.frames) + " frames in " + std::to_string(rate.seconds) +
                     " seconds are not possible; there may be 1 to 1000 in one"};
    }
    if (std::holds_alternative<ClipStream>(destination) && !traits.canStream) {
        return Error{std::string(traits.name) + " needs a file"};
    }
    return checkAlpha(traits, settings.alpha);
}

MadeClipWriter makeWriter(ClipFormat format, ClipOutput output, const ClipSettings& settings) {
    switch (format) {
    case ClipFormat::ProRes:
    case ClipFormat::Vp9:
        return makeLibavClipWriter(format, std::move(output), settings);
    case ClipFormat::WebP:
        return makeWebPClipWriter(std::move(output), settings);
    case ClipFormat::Apng:
        return makeApngClipWriter(std::move(output), settings);
    case ClipFormat::Gif:
        return makeGifClipWriter(std::move(output), settings);
    case ClipFormat::Rgba:
    case ClipFormat::Y4m:
        return makeRawClipWriter(format, std::move(output), settings);
    }
    return output.failure("that kind of clip is unknown");
}

/// What all writers refuse in the same way.
class CheckedClipWriter final : public ClipWriter {
public:
    CheckedClipWriter(std::unique_ptr<ClipWriter> writer, std::string name, const ClipSettings& settings)
        : m_writer(std::move(writer))
        , m_name(std::move(name))
        , m_width(settings.width)
        , m_height(settings.height) {}

    Result<void> add(const ImageBuffer& frame) override {
        if (frame.width() != m_width || frame.height() != m_height) {
            return Error{"cannot write " + m_name + ": a frame has " + std::to_string(frame.width()) + " x " +
                         std::to_string(frame.height()) + " pixels instead of " + std::to_string(m_width) + " x " +
                         std::to_string(m_height)};
        }
        m_isEmpty = false;
        return m_writer->add(frame);
    }

    Result<void> finish() override {
        return m_isEmpty ? Error{"cannot write " + m_name + ": the clip has no frames"} : m_writer->finish();
    }

private:
    std::unique_ptr<ClipWriter> m_writer;
    std::string m_name;
    int m_width;
    int m_height;
    bool m_isEmpty = true;
};

} // namespace

Result<std::unique_ptr<ClipWriter>> makeClipWriter(ClipFormat format, const ClipDestination& destination,
                                                   const ClipSettings& settings) {
    const std::string name = nameOf(destination);
    if (auto possible = check(traitsOf(format), destination, settings); !possible) {
        return Error{"cannot write " + name + ": " + possible.error().message};
    }
    auto output = ClipOutput::open(destination);
    if (!output) {
        return output.error();
    }
    auto writer = makeWriter(format, std::move(output).value(), settings);
    if (!writer) {
        return writer;
    }
    return std::unique_ptr<ClipWriter>(std::make_unique<CheckedClipWriter>(std::move(writer).value(), name, settings));
}

} // namespace starbloom
