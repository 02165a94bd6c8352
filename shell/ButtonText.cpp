// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ButtonText.h"

#include "views/ControlLook.h"

#include <QApplication>
#include <QPushButton>

namespace starbloom {

namespace {

/// Faces that coloured titles can be read on, in either scheme.
constexpr QColor darkFace(38, 42, 48);
constexpr QColor lightFace(250, 250, 250);

} // namespace

void setButtonText(const QColor& color, QPushButton& button, const QFont& font) {
    QPalette palette = QApplication::palette(&button);
    palette.setColor(QPalette::Active, QPalette::ButtonText, color);
    palette.setColor(QPalette::Inactive, QPalette::ButtonText, color);
    if (contrast(color, palette.color(QPalette::Button)) < textContrast) {
        const QColor face = contrast(color, darkFace) >= contrast(color, lightFace) ? darkFace : lightFace;
        palette.setColor(QPalette::Button, face);
    }
    button.setPalette(palette);
    button.setFont(font);
}

void setButtonText(const QColor& color, QPushButton& button) {
    setButtonText(color, button, QApplication::font());
}

} // namespace starbloom
