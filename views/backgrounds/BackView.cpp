// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/backgrounds/BackView.h"

#include "views/ControlLook.h"

#include <QPainter>

namespace starbloom {

QColor panelBorderColor() {
    return QColor::fromRgbF(0.3F, 0.5F, 0.7F, 0.3F);
}

BackView::BackView(QWidget* parent)
    : QWidget(parent) {}

void BackView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    paintPanel(painter, rect(), panelRadius, panelColor, panelBorderColor());
}

} // namespace starbloom
