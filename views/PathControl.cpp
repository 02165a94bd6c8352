// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/PathControl.h"

#include "views/ControlLook.h"
#include "views/SymbolIcon.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

namespace starbloom {

namespace {

constexpr int symbolSize = 18;
constexpr int gap = 6;

/// The frame with its margin, on one side.
constexpr int border = 3;

/// As short a text as this is always shown whole, whatever the font: it is what stands for a folder not chosen yet.
const auto shortText = QStringLiteral("/Users/??\?/??\?");

} // namespace

PathControl::PathControl(QWidget* parent)
    : FramedButton(parent) {
    setIcon(symbolIcon(u"folder"));
    setStringValue({});
}

void PathControl::setStringValue(const QString& value) {
    m_stringValue = value;
    setToolTip(plainToolTip(qtTrId("pathControlToolTip").arg(value)));
    setAccessibleDescription(value);
    update();
}

QSize PathControl::sizeHint() const {
    const QFontMetrics metrics(font());
    const int width = 2 * border + 3 * gap + symbolSize + metrics.horizontalAdvance(shortText) + 1;
    const int height = 2 * border + metrics.height();
    return QSize(width, height).expandedTo(QSize(180, controlHeight));
}

QSize PathControl::minimumSizeHint() const {
    return {controlHeight, controlHeight};
}

void PathControl::paintContents(QPainter& painter, const QRectF& inside) {
    const QRect whole = inside.toRect().adjusted(gap, 0, -gap, 0);
    const QRect iconPlace(whole.left(), whole.center().y() - symbolSize / 2 + 1, symbolSize, symbolSize);
    const QRect textPlace = whole.adjusted(symbolSize + gap, 0, 0, 0);
    icon().paint(&painter, QStyle::visualRect(layoutDirection(), whole, iconPlace));

    const QRect place = QStyle::visualRect(layoutDirection(), whole, textPlace);
    const QString text = QFontMetrics(font()).elidedText(m_stringValue, Qt::ElideMiddle, place.width());
    const Qt::Alignment alignment = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.setPen(palette().color(QPalette::Active, QPalette::ButtonText));
    // A path reads from left to right in every language.
    painter.setLayoutDirection(Qt::LeftToRight);
    painter.drawText(place, static_cast<int>(alignment) | Qt::TextSingleLine, text);
}

} // namespace starbloom
