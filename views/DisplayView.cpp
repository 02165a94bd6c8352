// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/DisplayView.h"

#include "views/ControlLook.h"

#include <QPainter>

namespace starbloom {

DisplayView::DisplayView(QWidget* parent)
    : QWidget(parent) {}

void DisplayView::setImage(const QImage& image) {
    m_myImage = image;
    update();
}

void DisplayView::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (m_myImage.isNull()) {
        return;
    }
    const QSizeF size = m_myImage.deviceIndependentSize();
    const QPointF corner((width() - size.width()) / 2.0, (height() - size.height()) / 2.0);
    QPainter painter(this);
    // The picture takes the place of all that the view has drawn, which is nothing. Writing its transparent pixels
    // into the window, which widgets share, would leave black holes there instead.
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(onPixels(painter, QRectF(corner, size)), m_myImage, m_myImage.rect());
}

} // namespace starbloom
