// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/screenshots/PictureCanvas.h"

#include <QApplication>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace starbloom {

namespace {

constexpr double pixelsPerPoint = 2.0;

constexpr QColor groundTop(16, 20, 31);
constexpr QColor groundBottom(38, 46, 66);
constexpr QColor frameColor(255, 190, 50);

constexpr double titleBarHeight = 28.0;
constexpr double cornerRadius = 8.0;

/// How far a frame is away from what it frames, and how wide it is.
constexpr double frameDistance = 3.0;
constexpr double frameWidth = 2.0;

constexpr int shadowWidth = 12;
constexpr int shadowStrength = 12; ///< The opacity of each of its layers, of 255.

} // namespace

QRectF PlacedWindow::rectOf(const WidgetPart& part) const {
    const QPointF inWindow = part.widget->mapTo(window, part.rect.topLeft());
    return {corner + inWindow * scale, QSizeF(part.rect.size()) * scale};
}

PictureCanvas::PictureCanvas()
    : m_image(QSizeF(width * pixelsPerPoint, height * pixelsPerPoint).toSize(), QImage::Format_RGB32) {
    m_image.setDevicePixelRatio(pixelsPerPoint);
    QLinearGradient gradient(0.0, 0.0, 0.0, height);
    gradient.setColorAt(0.0, groundTop);
    gradient.setColorAt(1.0, groundBottom);
    QPainter(&m_image).fillRect(QRect(0, 0, width, height), gradient);
}

PlacedWindow PictureCanvas::addWindow(QWidget& window, Qt::Alignment alignment) {
    const double scale = std::min(
        {1.0, (width - 2 * margin) / window.width(), (height - 2 * margin) / (window.height() + titleBarHeight)});
    const QSizeF size = QSizeF(window.size()) * scale;
    const double bar = titleBarHeight * scale;
    const double free = height - size.height() - bar;
    const double top = alignment == Qt::AlignBottom ? free - margin : free / 2;
    return addWindow(window, {(width - size.width()) / 2, top + bar}, scale);
}

PlacedWindow PictureCanvas::addWindow(QWidget& window, const QPointF& corner, double scale) {
    const QImage look = window.grab().toImage();
    const QRectF rect(corner, QSizeF(window.size()) * scale);
    QPainter painter(&m_image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    drawFrame(painter, window, corner, scale);
    // Painting it smaller would leave pixels out.
    const QImage fitting =
        look.scaled((rect.size() * pixelsPerPoint).toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    painter.drawImage(rect, fitting);
    return {&window, corner, scale};
}

void PictureCanvas::drawFrame(QPainter& painter, const QWidget& window, const QPointF& corner, double scale) const {
    const double bar = titleBarHeight * scale;
    const double radius = cornerRadius * scale;
    const QRectF whole(corner - QPointF(0.0, bar), QSizeF(window.size()) * scale + QSizeF(0.0, bar));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, shadowStrength));
    for (int i = 1; i <= shadowWidth; ++i) {
        painter.drawRoundedRect(whole.adjusted(-i, -i, i, i).translated(0.0, 3.0), radius + i, radius + i);
    }
    const QPalette palette = QApplication::palette();
    const QColor face = palette.color(QPalette::Window);
    painter.setBrush(face.lightness() < 128 ? face.darker(135) : face.darker(110));
    painter.drawRoundedRect(whole.adjusted(0.0, 0.0, 0.0, -whole.height() / 2), radius, radius);
    QFont font = QApplication::font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * scale);
    painter.setFont(font);
    painter.setPen(palette.color(QPalette::WindowText));
    painter.drawText(QRectF(whole.topLeft(), QSizeF(whole.width(), bar)), Qt::AlignCenter, window.windowTitle());
}

void PictureCanvas::fill(const QImage& image) {
    QPainter painter(&m_image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(0.0, 0.0, width, height), image);
}

void PictureCanvas::dim() {
    QPainter(&m_image).fillRect(QRect(0, 0, width, height), QColor(10, 13, 20, 140));
}

void PictureCanvas::addFrame(const QRectF& rect) {
    QPainter painter(&m_image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF around = rect.adjusted(-frameDistance, -frameDistance, frameDistance, frameDistance);
    // A dark edge keeps it apart from bright windows.
    for (const auto& [color, extra] : {std::pair(QColor(0, 0, 0, 70), 2.5), std::pair(frameColor, 0.0)}) {
        painter.setPen(QPen(color, frameWidth + extra));
        painter.drawRoundedRect(around, 6.0, 6.0);
    }
}

} // namespace starbloom
