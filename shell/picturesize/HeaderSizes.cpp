// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/picturesize/PictureFile.h"
#include "shell/picturesize/PictureSize.h"

#include <QFile>
#include <QImageReader>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

namespace starbloom {

// By hand: the toolkit would go through all frames of an animation. Behind the mark stand width and height of the whole
// picture, 16 bits each, least significant byte first.
PixelSize gifSize(const PictureFile& file) {
    constexpr std::size_t headerSize = 10;
    const std::string_view head = file.head();
    if (head.size() < headerSize) {
        return {};
    }
    return {qFromLittleEndian<quint16>(head.data() + 6), qFromLittleEndian<quint16>(head.data() + 8)};
}

// As Adobe's published description of Photoshop's file format lays its header out, most significant byte first: the
// mark, version 1 in 16 bits, six zeros, the number of channels in 16 bits, height and width in 32 bits each, and two
// more 16-bit numbers.
PixelSize psdSize(const PictureFile& file) {
    constexpr std::size_t headerSize = 26;
    constexpr std::int64_t longest = 30'000; // What the format allows.
    const std::string_view head = file.head();
    if (head.size() < headerSize || qFromBigEndian<quint16>(head.data() + 4) != 1 ||
        std::any_of(head.begin() + 6, head.begin() + 12, [](char byte) { return byte != 0; })) {
        return {};
    }
    const PixelSize size{qFromBigEndian<quint32>(head.data() + 18), qFromBigEndian<quint32>(head.data() + 14)};
    return size.width <= longest && size.height <= longest ? size : PixelSize{};
}

PixelSize toolkitSize(const PictureFile& file, const char* format) {
    QFile device;
    if (!device.open(file.descriptor(), QIODevice::ReadOnly)) {
        return {};
    }
    QImageReader reader(&device, format);
    // The content has been judged already; by itself the reader would try all formats that are installed.
    reader.setAutoDetectImageFormat(false);
    const QSize size = reader.size();
    // A negative height says that the first row is the top one.
    return {size.width(), std::llabs(size.height())};
}

} // namespace starbloom
