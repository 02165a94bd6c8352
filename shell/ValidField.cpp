// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ValidField.h"

#include "views/ControlLook.h"

#include <QApplication>
#include <QLineEdit>

namespace starbloom {

void showAsValid(QLineEdit& field, bool valid) {
    QPalette palette; // Nothing of its own: it goes on following the desktop.
    if (!valid) {
        palette.setColor(QPalette::Text, errorColor(QApplication::palette(&field)));
    }
    field.setPalette(palette);
}

} // namespace starbloom
