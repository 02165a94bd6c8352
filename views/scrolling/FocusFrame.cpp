// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/scrolling/FocusFrame.h"

#include "views/ControlLook.h"

#include <QChildEvent>
#include <QLayout>
#include <QPainter>

namespace starbloom {

namespace {

/// How far the ring reaches out of the child. Points.
constexpr int ringReach = 3;

} // namespace

FocusFrame::FocusFrame(QWidget* parent)
    : QWidget(parent) {}

void FocusFrame::childEvent(QChildEvent* event) {
    QWidget::childEvent(event);
    if (event->added()) {
        event->child()->installEventFilter(this);
    }
}

bool FocusFrame::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    }
    return QWidget::eventFilter(watched, event);
}

void FocusFrame::paintEvent(QPaintEvent* /*event*/) {
    if (controlState(*this).focused) {
        QPainter painter(this);
        const QRect child = layout()->contentsRect();
        paintFocusRing(painter, child.adjusted(-ringReach, -ringReach, ringReach, ringReach), palette());
    }
}

} // namespace starbloom
