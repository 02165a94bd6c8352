// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/PictureEncoder.h"

#include "export/picture/FormatEncoders.h"
#include "export/picture/PngCodec.h"

#include <algorithm>

namespace starbloom {

Result<std::vector<std::byte>> encodePicture(const ImageBuffer& image, const PictureOptions& options,
                                             const ShowNote* note) {
    const std::string comment = note != nullptr ? toText(*note) : std::string();
    switch (options.format) {
    case PictureFormat::Bmp:
        return encodeBmp(image);
    case PictureFormat::Gif:
        return encodeGif(image, comment);
    case PictureFormat::Jpeg:
        return encodeJpeg(image, options.quality, comment);
    case PictureFormat::Jpeg2000:
        return encodeJpeg2000(image, options.quality, options.transparent, comment);
    case PictureFormat::Png:
        return encodePng(image, options.transparent, comment);
    case PictureFormat::Tiff:
        return encodeTiff(image, options.transparent, comment);
    }
    return Error{"that kind of picture is unknown"};
}

void lightToAlpha(ImageBuffer& image) {
    const auto bytes = image.bytes();
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        const int alpha = std::max({bytes[i], bytes[i + 1], bytes[i + 2]});
        for (std::size_t channel = i; alpha > 0 && channel < i + 3; ++channel) {
            // Rounded, the product with alpha is less than half a step off, so it rounds back to what was there.
            bytes[channel] = static_cast<std::uint8_t>((bytes[channel] * 255 + alpha / 2) / alpha);
        }
        bytes[i + 3] = static_cast<std::uint8_t>(alpha);
    }
}

} // namespace starbloom
