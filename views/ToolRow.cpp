// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ToolRow.h"

#include <QEvent>
#include <QLayout>

namespace starbloom {

bool ToolRow::event(QEvent* event) {
    const bool handled = QToolBar::event(event);
    // The style's distances come back now and then, before these events at the latest.
    switch (event->type()) {
    case QEvent::Polish:
    case QEvent::StyleChange:
    case QEvent::Show:
    case QEvent::Resize:
    case QEvent::LayoutRequest:
        keepDistances();
        break;
    default:
        break;
    }
    return handled;
}

void ToolRow::keepDistances() {
    if (!layout()->contentsMargins().isNull() || layout()->spacing() != spacing) {
        layout()->setContentsMargins({});
        layout()->setSpacing(spacing);
    }
}

} // namespace starbloom
