// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/FramedButton.h"

#include "views/ControlLook.h"

#include <QKeyEvent>
#include <QPainter>

namespace starbloom {

FramedButton::FramedButton(QWidget* parent)
    : QAbstractButton(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

void FramedButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRectF inside = paintControl(painter, rect(), palette(), controlState(*this, isDown()));
    paintContents(painter, inside);
}

void FramedButton::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && !event->isAutoRepeat()) {
        click();
    } else {
        QAbstractButton::keyPressEvent(event);
    }
}

} // namespace starbloom
