// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/RasterStage.h"

#include <QPaintEngine>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <bit>

namespace starbloom {

namespace {

// QImage keeps a pixel as a number, the renderer as four bytes; here both are the same.
static_assert(std::endian::native == std::endian::little);
constexpr auto pictureFormat = QImage::Format_RGB32;

/// The pixels that a widget covers. With fractional scale factors its edges may lie between pixels; rounding each edge,
/// as Qt does for its clipping, makes neighbours meet without a gap.
QRect coveredPixels(const QRect& widget, const QTransform& toPixels) {
    const QRectF exact = toPixels.mapRect(QRectF(widget));
    const QPoint topLeft(qRound(exact.left()), qRound(exact.top()));
    const QPoint bottomRight(qRound(exact.right()), qRound(exact.bottom()));
    return {topLeft, QSize(std::max(bottomRight.x() - topLeft.x(), 1), std::max(bottomRight.y() - topLeft.y(), 1))};
}

/// Copies the part of a picture that lies in a rectangle of the target straight into the target's memory. A painter
/// clipped to many rectangles would do it span by span, and wake threads for that.
void copyPixels(const QImage& picture, const QPoint& place, const QRect& rect, QImage& target) {
    const QRect area = rect & QRect(place, picture.size()) & target.rect();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto* from =
            reinterpret_cast<const QRgb*>(picture.constScanLine(y - place.y())) + area.left() - place.x();
        std::copy_n(from, area.width(), reinterpret_cast<QRgb*>(target.scanLine(y)) + area.left());
    }
}

/// The window's own memory behind a painter, if a picture's pixels can be copied to it as they are.
QImage* memoryBehind(const QPainter& painter) {
    auto* image = dynamic_cast<QImage*>(painter.paintEngine()->paintDevice());
    const bool same = image != nullptr && (image->format() == QImage::Format_RGB32 ||
                                           image->format() == QImage::Format_ARGB32_Premultiplied);
    return same ? image : nullptr;
}

} // namespace

bool RasterStage::isPlaced() const {
    return !m_picture.isNull() && m_placedSize == m_widget.size() && m_pixelsPerPoint == m_widget.devicePixelRatioF();
}

QRegion RasterStage::render(const StageMoment& moment) {
    render(moment, m_picture.size(), m_pixelsPerPoint);
    QRegion changed;
    for (const PixelRect& pixels : m_lit.changed()) {
        const QRectF exact(pixels.x / m_pixelsPerPoint, pixels.y / m_pixelsPerPoint, pixels.width / m_pixelsPerPoint,
                           pixels.height / m_pixelsPerPoint);
        changed += m_pixelsPerPoint == 1.0 ? exact.toRect() : exact.toAlignedRect().adjusted(-1, -1, 1, 1);
    }
    return changed;
}

bool RasterStage::fits(const QPainter& painter) const {
    const QTransform toPixels = painter.deviceTransform();
    return !m_passedOver && m_picture.size() == coveredPixels(m_widget.rect(), toPixels).size() &&
           m_pixelsPerPoint == toPixels.m11();
}

void RasterStage::renderFor(const QPainter& painter, const StageMoment& moment) {
    const QTransform toPixels = painter.deviceTransform();
    render(moment, coveredPixels(m_widget.rect(), toPixels).size(), toPixels.m11());
}

void RasterStage::paint(QPainter& painter, const QRegion& region) {
    const QTransform toPixels = painter.deviceTransform();
    const QRect pixels = coveredPixels(m_widget.rect(), toPixels);
    m_placedSize = m_widget.size();
    if (QImage* memory = memoryBehind(painter)) {
        for (const QRect& part : region) {
            copyPixels(m_picture, pixels.topLeft(), coveredPixels(part, toPixels), *memory);
        }
        return;
    }
    // Drawn in the screen's own pixels, so that nothing is scaled and no edge lies between two of them.
    painter.setWorldTransform(QTransform::fromTranslate(pixels.x(), pixels.y()) * toPixels.inverted());
    painter.drawImage(0, 0, m_picture);
}

void RasterStage::render(const StageMoment& moment, const QSize& pixels, double pixelsPerPoint) {
    if (m_picture.size() != pixels) {
        m_picture = QImage(pixels, pictureFormat);
        m_lit.forget();
    }
    const RasterTarget target{m_picture.bits(), static_cast<std::size_t>(m_picture.bytesPerLine()), pixels.width(),
                              pixels.height(), PixelOrder::Bgra};
    m_renderer.renderNext(moment.sparks,
                          {.time = moment.time, .pixelsPerPoint = pixelsPerPoint, .background = moment.background},
                          target, m_lit);
    m_pixelsPerPoint = pixelsPerPoint;
    m_passedOver = false;
}

} // namespace starbloom
