// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/backgrounds/GradientView.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace starbloom {

namespace {

/// What a picture must hold that is stretched to the size when it is painted. One as wide as a row of screens would
/// take more memory than all other windows.
QSizeF stripOf(const QSizeF& size, double angle) {
    if (std::fmod(angle, 180.0) == 0.0) {
        return {size.width(), std::min(size.height(), 1.0)};
    }
    return std::fmod(angle, 90.0) == 0.0 ? QSizeF(std::min(size.width(), 1.0), size.height()) : size;
}

} // namespace

GradientView::GradientView(const Gradation& gradation, QWidget* parent)
    : QWidget(parent)
    , m_gradation(gradation) {}

void GradientView::makeGradation() {
    m_colorArray.insert(m_colorArray.end(), m_gradation.stops.begin(), m_gradation.stops.end());
    m_imageSize = {m_gradation.width == Gradation::own ? width() : m_gradation.width,
                   m_gradation.height == Gradation::own ? height() : m_gradation.height};
    m_myImage = createGradientImage(stripOf(m_imageSize, m_gradation.angle), m_gradation.angle);
    update();
}

QImage GradientView::createGradientImage(const QSizeF& size, double angle) const {
    return starbloom::createGradientImage(m_colorArray, size, angle, devicePixelRatioF());
}

void GradientView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(m_awake, true)) {
        makeGradation();
    }
}

void GradientView::paintEvent(QPaintEvent* /*event*/) {
    if (!m_myImage.isNull()) {
        QPainter(this).drawImage(QRectF({}, m_imageSize), m_myImage);
    }
}

} // namespace starbloom
