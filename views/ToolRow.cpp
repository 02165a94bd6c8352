// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ToolRow.h"

#include <QEvent>
#include <QLayout>

namespace starbloom {

bool ToolRow::event(QEvent* event) {
    const bool handled = QToolBar::event(event);
    // The style's distances come back at these events.
    if (event->type() == QEvent::Polish || event->type() == QEvent::StyleChange || event->type() == QEvent::Show) {
        layout()->setContentsMargins(margin, 0, margin, 0);
        layout()->setSpacing(spacing);
    }
    return handled;
}

} // namespace starbloom
