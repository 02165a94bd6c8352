// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/InputPause.h"

#include <QCoreApplication>
#include <QEvent>

namespace starbloom {

InputPause::InputPause() {
    QCoreApplication::instance()->installEventFilter(this);
}

bool InputPause::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        event->accept(); // Taken: it will be no shortcut.
        return true;
    case QEvent::Shortcut:
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
    case QEvent::Wheel:
    case QEvent::Drop:
        return true; // What was pressed before may be let go.
    default:
        return QObject::eventFilter(watched, event);
    }
}

} // namespace starbloom
