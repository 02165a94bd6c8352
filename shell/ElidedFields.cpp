// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ElidedFields.h"

#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>
#include <QStylePainter>

namespace starbloom {

namespace {

/// What the styles keep free on either side of a text. Points.
constexpr int textMargin = 2;

} // namespace

void ElidedPopup::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const QRect text = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
    const int icon = option.currentIcon.isNull() ? 0 : option.iconSize.width() + 2 * textMargin;
    option.currentText =
        option.fontMetrics.elidedText(option.currentText, Qt::ElideMiddle, text.width() - icon - 2 * textMargin);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void ElidedField::paintEvent(QPaintEvent* event) {
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect text = style()
                           ->subElementRect(QStyle::SE_LineEditContents, &option, this)
                           .marginsRemoved(textMargins())
                           .adjusted(textMargin, 0, -textMargin, 0);
    if (hasFocus() || option.fontMetrics.horizontalAdvance(displayText()) <= text.width()) {
        QLineEdit::paintEvent(event);
        return;
    }
    QStylePainter painter(this);
    painter.drawPrimitive(QStyle::PE_PanelLineEdit, option);
    // Paths run from left to right in every language.
    painter.setLayoutDirection(Qt::LeftToRight);
    painter.drawItemText(text, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(),
                         option.fontMetrics.elidedText(displayText(), Qt::ElideMiddle, text.width()), QPalette::Text);
}

} // namespace starbloom
