// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/IconButton.h"

#include "views/ControlLook.h"

#include <QAction>
#include <QPainter>

namespace starbloom {

IconButton::IconButton(QAction* action, QWidget* parent)
    : QToolButton(parent) {
    setDefaultAction(action);
    setAutoRaise(true);
    setFixedSize(controlHeight, controlHeight);
    setFocusPolicy(Qt::TabFocus);
}

void IconButton::paintEvent(QPaintEvent* event) {
    QToolButton::paintEvent(event);
    if (controlState(*this).focused) {
        QPainter painter(this);
        paintFocusRing(painter, rect(), palette());
    }
}

} // namespace starbloom
