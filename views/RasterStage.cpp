// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/RasterStage.h"

#include <QBackingStore>
#include <QPaintEngine>
#include <QPainter>
#include <QTransform>
#include <QWidget>

#include <algorithm>
#include <bit>
#include <cmath>

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

/// Whether a widget's part of its parent is out of sight, or another widget of the parent's lies above some of it.
bool isCovered(const QWidget& widget, const QRect& part) {
    const QWidget& parent = *widget.parentWidget();
    if (!parent.rect().contains(part)) {
        return true;
    }
    // Later ones lie above.
    const QObjectList& children = parent.children();
    return std::any_of(children.rbegin(), std::find(children.rbegin(), children.rend(), &widget), [&](QObject* each) {
        const auto* const other = qobject_cast<QWidget*>(each);
        return other != nullptr && !other->isHidden() && !other->isWindow() && other->geometry().intersects(part);
    });
}

} // namespace

QImage RasterStage::picture() const {
    if (!m_picture.isNull() || m_target.pixels == nullptr) {
        return m_picture;
    }
    const QBackingStore* const store = m_widget.window()->backingStore();
    auto* memory = store != nullptr ? dynamic_cast<QImage*>(const_cast<QBackingStore*>(store)->paintDevice()) : nullptr;
    return memory != nullptr
               ? memory->copy(coveredPixels(m_widget.rect(), toWindowPixels())).convertToFormat(pictureFormat)
               : QImage();
}

bool RasterStage::isPlaced() const {
    return m_target.pixels != nullptr && m_placedSize == m_widget.size() &&
           m_pixelsPerPoint == m_widget.devicePixelRatioF();
}

QTransform RasterStage::toWindowPixels() const {
    const QPoint place = m_widget.mapTo(m_widget.window(), QPoint());
    const double zoom = m_widget.devicePixelRatioF();
    return QTransform::fromTranslate(place.x(), place.y()) * QTransform::fromScale(zoom, zoom);
}

bool RasterStage::ownsItsPlace() const {
    const QWidget* const window = m_widget.window();
    if (m_widget.nativeParentWidget() != window || !m_widget.updatesEnabled() ||
        m_widget.findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly) != nullptr) {
        return false;
    }
    QRect part = m_widget.rect();
    for (const QWidget* each = &m_widget; each != window; each = each->parentWidget()) {
        part.translate(each->pos());
        if (isCovered(*each, part)) {
            return false;
        }
    }
    return true;
}

bool RasterStage::present(const StageMoment& moment) {
    QBackingStore* const store = m_widget.window()->backingStore();
    if (store == nullptr || !m_memoryLasts || !isPlaced() || !ownsItsPlace()) {
        return false;
    }
    const QRect place(m_widget.mapTo(m_widget.window(), QPoint()), m_widget.size());
    QImage* const memory = m_memory.begin(*store, place);
    const QRect pixels = coveredPixels(m_widget.rect(), toWindowPixels());
    const bool fits = memory != nullptr && memory->rect().contains(pixels);
    if (fits) {
        std::uint8_t* const first = memory->scanLine(pixels.top()) + 4 * static_cast<std::ptrdiff_t>(pixels.left());
        if (first[3] != 255) {
            // Some window systems clear what is about to be painted. Then there is nothing to be gained.
            m_memoryLasts = false;
            m_lit.forget();
        }
        m_picture = QImage();
        render(moment,
               {first, static_cast<std::size_t>(memory->bytesPerLine()), pixels.width(), pixels.height(),
                PixelOrder::Bgra},
               m_pixelsPerPoint);
    }
    store->endPaint();
    if (!fits) {
        // What was there may have been cleared.
        m_memoryLasts = memory != nullptr;
        m_lit.forget();
        return false;
    }
    // Between whole scale factors an edge of the stage may lie within a point; all of that is to be shown.
    const int rim = m_pixelsPerPoint == std::floor(m_pixelsPerPoint) ? 0 : 1;
    const QRect shown = place.adjusted(-rim, -rim, rim, rim) & m_widget.window()->rect();
    store->flush(changedPoints().translated(place.topLeft()) & shown, m_widget.window()->windowHandle());
    return true;
}

std::optional<QRect> RasterStage::sharedPixels() const {
    return m_memoryLasts && m_memory.isShared() ? std::optional(coveredPixels(m_widget.rect(), toWindowPixels()))
                                                : std::nullopt;
}

void RasterStage::renderElsewhere(const StageMoment& moment, const RasterTarget& target, LitArea& lit) {
    m_renderer.renderNext(moment.sparks,
                          {.time = moment.time, .pixelsPerPoint = m_pixelsPerPoint, .background = moment.background},
                          target, lit);
}

void RasterStage::take(const QImage& shown) {
    m_lit.forget();
    QBackingStore* const store = m_widget.window()->backingStore();
    if (store == nullptr) {
        return;
    }
    const QRect place(m_widget.mapTo(m_widget.window(), QPoint()), m_widget.size());
    if (QImage* const memory = m_memory.begin(*store, place)) {
        const QRect pixels = coveredPixels(m_widget.rect(), toWindowPixels());
        copyPixels(shown, pixels.topLeft(), pixels, *memory);
    }
    store->endPaint();
}

QRegion RasterStage::render(const StageMoment& moment) {
    renderOwn(moment, {m_target.width, m_target.height}, m_pixelsPerPoint);
    return changedPoints();
}

QRegion RasterStage::changedPoints() {
    QRegion changed;
    if (m_pixelsPerPoint == 1.0) {
        m_changedRects.clear();
        for (const PixelRect& each : m_lit.changed()) {
            m_changedRects.emplace_back(each.x, each.y, each.width, each.height);
        }
        changed.setRects(m_changedRects.data(), static_cast<int>(m_changedRects.size()));
        return changed;
    }
    for (const PixelRect& pixels : m_lit.changed()) {
        const QRectF exact(pixels.x / m_pixelsPerPoint, pixels.y / m_pixelsPerPoint, pixels.width / m_pixelsPerPoint,
                           pixels.height / m_pixelsPerPoint);
        changed += exact.toAlignedRect().adjusted(-1, -1, 1, 1);
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
    renderOwn(moment, coveredPixels(m_widget.rect(), toPixels).size(), toPixels.m11());
}

void RasterStage::paint(QPainter& painter, const QRegion& region) {
    const QTransform toPixels = painter.deviceTransform();
    const QRect pixels = coveredPixels(m_widget.rect(), toPixels);
    m_placedSize = m_widget.size();
    m_memory.forget();
    if (QImage* memory = WindowMemory::pixelsOf(painter.paintEngine()->paintDevice())) {
        for (const QRect& part : region) {
            copyPixels(m_picture, pixels.topLeft(), coveredPixels(part, toPixels), *memory);
        }
        return;
    }
    // Drawn in the screen's own pixels, so that nothing is scaled and no edge lies between two of them.
    painter.setWorldTransform(QTransform::fromTranslate(pixels.x(), pixels.y()) * toPixels.inverted());
    painter.drawImage(0, 0, m_picture);
}

void RasterStage::renderOwn(const StageMoment& moment, const QSize& pixels, double pixelsPerPoint) {
    if (m_picture.size() != pixels) {
        m_picture = QImage(pixels, pictureFormat);
    }
    const RasterTarget target{m_picture.bits(), static_cast<std::size_t>(m_picture.bytesPerLine()), pixels.width(),
                              pixels.height(), PixelOrder::Bgra};
    render(moment, target, pixelsPerPoint);
}

void RasterStage::render(const StageMoment& moment, const RasterTarget& target, double pixelsPerPoint) {
    if (target != m_target) {
        m_lit.forget();
        m_target = target;
    }
    m_renderer.renderNext(moment.sparks,
                          {.time = moment.time, .pixelsPerPoint = pixelsPerPoint, .background = moment.background},
                          target, m_lit);
    m_pixelsPerPoint = pixelsPerPoint;
    m_passedOver = false;
}

} // namespace starbloom
