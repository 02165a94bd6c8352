// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/DarkStyle.h"

#include "views/ControlLook.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace starbloom {

namespace {

/// A group box holds others together and is no control: it may be quieter.
constexpr double groupContrast = 1.6;

/// Between a group's title and its frame. Points.
constexpr int titleGap = 3;

/// Between the edge of a menu and the line between two groups. Points.
constexpr int separatorInset = 5;

} // namespace

DarkStyle::DarkStyle()
    : ProgramStyle(QStringLiteral("Fusion")) {}

void DarkStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
    QProxyStyle::drawControl(element, option, painter, widget);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuItem && item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator) {
        // The style's own line is darker than the menu, which is hardly possible here.
        const QRect line(item->rect.left() + separatorInset, item->rect.center().y(),
                         item->rect.width() - 2 * separatorInset, 1);
        painter->fillRect(line, windowColor(item->palette, item->palette.color(QPalette::Base), groupContrast));
    }
}

void DarkStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    ProgramStyle::drawPrimitive(element, option, painter, widget);
    const bool isField = element == PE_IndicatorCheckBox || element == PE_IndicatorMenuCheckMark ||
                         element == PE_FrameLineEdit || element == PE_PanelLineEdit;
    if (!isField && element != PE_FrameGroupBox) {
        return;
    }
    if (element == PE_PanelLineEdit) {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame == nullptr || frame->lineWidth <= 0) {
            return; // Inside another control, which has an outline.
        }
    }
    const bool focused = (option->state & State_HasFocus) != 0 && element != PE_IndicatorCheckBox;
    const QColor plain =
        windowColor(option->palette, option->palette.color(QPalette::Window), isField ? shapeContrast : groupContrast);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(focused ? option->palette.color(QPalette::Highlight) : plain, 1.0));
    painter->setBrush(Qt::NoBrush);
    if ((option->state & State_Enabled) == 0) {
        painter->setOpacity(disabledOpacity);
    }
    QRectF outline = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (element == PE_FrameGroupBox) {
        // The style's own frame begins below the title.
        outline.setTop(outline.top() +
                       std::max(pixelMetric(PM_IndicatorHeight, option, widget), option->fontMetrics.height()) +
                       titleGap);
    }
    painter->drawRoundedRect(outline, 2.0, 2.0);
    painter->restore();
}

int DarkStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* answer) const {
    // A light edge below disabled texts is a shadow where the ground is light; in the dark it blurs them.
    return hint == SH_EtchDisabledText ? 0 : QProxyStyle::styleHint(hint, option, widget, answer);
}

} // namespace starbloom
