// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/LinkButton.h"

#include "views/ControlLook.h"

#include <QPainter>

namespace starbloom {

LinkButton::LinkButton(QWidget* parent)
    : QPushButton(parent) {
    setAutoDefault(true); // The Enter key clicks it, too.
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

void LinkButton::setPlainText(const QString& text) {
    m_text = text;
    setText(QString(text).replace(u'&', QStringLiteral("&&")));
}

QSize LinkButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(m_text) + 2 * border, fontMetrics().height() + 2};
}

void LinkButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ControlState state = controlState(*this, isDown());
    QFont underlined = font();
    underlined.setUnderline(true);
    painter.setFont(underlined);
    painter.setPen(linkColor(palette()));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, m_text);
    if (state.focused) {
        paintFocusRing(painter, rect(), palette());
    }
}

} // namespace starbloom
