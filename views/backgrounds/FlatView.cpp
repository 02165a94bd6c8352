// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/backgrounds/FlatView.h"

#include <QPaintEvent>
#include <QPainter>

namespace starbloom {

FlatView::FlatView(const QColor& color, QWidget* parent)
    : QWidget(parent)
    , m_color(color) {
    setAttribute(Qt::WA_OpaquePaintEvent); // What is behind it need not be painted.
}

void FlatView::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), m_color);
}

} // namespace starbloom
