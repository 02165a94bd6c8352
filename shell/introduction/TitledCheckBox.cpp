// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/introduction/TitledCheckBox.h"

#include "views/ControlLook.h"

#include <QEvent>
#include <QStyleOptionButton>
#include <QStylePainter>

namespace starbloom {

namespace {

/// Quiet beside dark windows, and still bright enough for a black title.
constexpr QColor lightPlate(196, 201, 209);
constexpr QColor darkPlate(43, 45, 48);

/// Between the plate's edge and the box.
constexpr QSize padding(8, 5);

constexpr double plateRadius = 4.0;

} // namespace

void TitledCheckBox::setTitleColor(const QColor& color) {
    m_titleColor = color;
    updateGeometry();
    update();
}

bool TitledCheckBox::needsPlate() const {
    return contrast(m_titleColor, palette().color(QPalette::Window)) < textContrast;
}

QSize TitledCheckBox::sizeHint() const {
    return needsPlate() ? QCheckBox::sizeHint() + 2 * padding : QCheckBox::sizeHint();
}

void TitledCheckBox::changeEvent(QEvent* event) {
    QCheckBox::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        updateGeometry();
    }
}

bool TitledCheckBox::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void TitledCheckBox::paintEvent(QPaintEvent* /*event*/) {
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    if (needsPlate()) {
        const QColor plate =
            contrast(m_titleColor, lightPlate) >= contrast(m_titleColor, darkPlate) ? lightPlate : darkPlate;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(plate);
        painter.drawRoundedRect(QRectF(rect()), plateRadius, plateRadius);
        painter.setRenderHint(QPainter::Antialiasing, false);
        option.palette = QPalette(plate);
        option.rect = rect().adjusted(padding.width(), padding.height(), -padding.width(), -padding.height());
    }
    option.palette.setColor(QPalette::WindowText, m_titleColor);
    option.palette.setColor(QPalette::ButtonText, m_titleColor);
    painter.drawControl(QStyle::CE_CheckBox, option);
}

} // namespace starbloom
