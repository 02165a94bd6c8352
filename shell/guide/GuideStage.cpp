// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/guide/GuideStage.h"

#include "views/ControlLook.h"

#include <QPainter>

#include <cmath>

namespace starbloom {

namespace {

constexpr double cornerRadius = 6.0;

// Points. What bursts look like can just be seen.
constexpr int leastWidth = 120;
constexpr int usualWidth = 180;

int heightOf(int width) {
    return static_cast<int>(std::lround(width / pictureAspect));
}

} // namespace

GuideStage::GuideStage(QWidget* parent)
    : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void GuideStage::setPicture(const QImage& picture) {
    if (picture.size() == m_wanted) {
        m_picture = picture;
        update();
    }
}

QSize GuideStage::sizeHint() const {
    return {usualWidth, heightOf(usualWidth)};
}

QSize GuideStage::minimumSizeHint() const {
    return {leastWidth, heightOf(leastWidth)};
}

int GuideStage::heightForWidth(int width) const {
    return heightOf(width);
}

void GuideStage::resizeEvent(QResizeEvent*) {
    askIfNeeded();
}

void GuideStage::askIfNeeded() {
    const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
    if (pixels != m_wanted && !pixels.isEmpty()) {
        m_wanted = pixels;
        emit pictureWanted(pixels);
    }
}

void GuideStage::paintEvent(QPaintEvent*) {
    askIfNeeded(); // The window may have come to a screen of another scale.
    QPainter painter(this);
    const QTransform toPixels = painter.deviceTransform();
    const double scale = toPixels.m11();
    // In the screen's own pixels, beginning at a whole one, so that nothing is scaled.
    const QPointF corner = toPixels.map(QPointF(0.0, 0.0));
    painter.setWorldTransform(QTransform::fromTranslate(std::round(corner.x()), std::round(corner.y())) *
                              toPixels.inverted());
    QBrush ground(Qt::black);
    if (!m_picture.isNull()) {
        ground = QBrush(m_picture);
        ground.setTransform(QTransform::fromScale(m_wanted.width() / static_cast<double>(m_picture.width()),
                                                  m_wanted.height() / static_cast<double>(m_picture.height())));
    }
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    const QRectF area({0.0, 0.0}, QSizeF(m_wanted));
    painter.drawRoundedRect(area, cornerRadius * scale, cornerRadius * scale);
    paintOutline(painter, area, palette(), cornerRadius * scale);
}

} // namespace starbloom
