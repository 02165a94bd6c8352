// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/introduction/PageBadge.h"

#include "shell/introduction/Bundle.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace starbloom {

namespace {

constexpr int fontHeight = 18;

/// How far above the middle the text's line lies.
constexpr double lift = 1.0;

} // namespace

QImage stringImage7(const QString& text, const QColor& color, double scale) {
    const int pixels = static_cast<int>(std::ceil(badgeSide * scale));
    QImage face(pixels, pixels, QImage::Format_RGBA8888_Premultiplied);
    face.setDevicePixelRatio(scale);
    face.fill(color);
    const QFont font = fontFromBundle(QStringLiteral("Univercity"), fontHeight, QStringLiteral("otf"));
    const QFontMetricsF metrics(font, &face);
    const double left = (badgeSide - metrics.horizontalAdvance(text)) / 2;
    const double top = (badgeSide - metrics.height()) / 2 - lift;
    QPainter painter(&face);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QPointF(left, top + metrics.ascent()), text);
    return face;
}

QImage roundCorners7(const QImage& image, const QSizeF& radii) {
    QImage rounded(image.size(), QImage::Format_RGBA8888_Premultiplied);
    rounded.setDevicePixelRatio(image.devicePixelRatio());
    rounded.fill(Qt::transparent);
    QPainter painter(&rounded);
    // A clip path would leave stairs along the edge.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF({}, image.deviceIndependentSize()), radii.width(), radii.height());
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.drawImage(QPointF(), image);
    return rounded;
}

} // namespace starbloom
