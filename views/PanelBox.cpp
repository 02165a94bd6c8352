// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/PanelBox.h"

#include "views/ControlLook.h"
#include "views/backgrounds/BackView.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

namespace starbloom {

namespace {

constexpr QColor darkPanelColor(70, 70, 70);

QColor panelColorOn(const QPalette& desktop) {
    const auto lightness = [&](QPalette::ColorRole role) { return desktop.color(QPalette::Active, role).lightness(); };
    return lightness(QPalette::Window) < lightness(QPalette::WindowText) ? darkPanelColor : panelColor;
}

/// The colour if it can be read on the ground, or the one of black and white that can.
QColor readable(const QColor& text, const QColor& ground) {
    if (contrast(text, ground) >= textContrast) {
        return text;
    }
    return contrast(Qt::black, ground) >= textContrast ? Qt::black : Qt::white;
}

} // namespace

PanelBox::PanelBox(QWidget* parent)
    : QGroupBox(parent) {}

QFont PanelBox::titleFont() const {
    QFont bold = font();
    bold.setBold(true);
    return bold;
}

int PanelBox::titleHeight() const {
    // Not of the bold font: it is as high, and to open a font takes time.
    return title().isEmpty() ? 0 : fontMetrics().height() + smallSpacing;
}

QSize PanelBox::minimumSizeHint() const {
    // Not the base class's, which makes room for another title in another place.
    const int width = QFontMetrics(titleFont()).size(Qt::TextShowMnemonic, title()).width();
    return QWidget::minimumSizeHint().expandedTo({width, titleHeight()});
}

bool PanelBox::event(QEvent* event) {
    const bool result = QGroupBox::event(event);
    // The base class takes the style's margins again whenever something changes.
    if (const QMargins margins(0, titleHeight(), 0, 0); contentsMargins() != margins) {
        setContentsMargins(margins);
    }
    m_seen = m_seen || event->type() == QEvent::Show;
    if (m_seen && (event->type() == QEvent::Show || event->type() == QEvent::ParentChange ||
                   event->type() == QEvent::PaletteChange)) {
        takeColors();
    }
    return result;
}

QPalette PanelBox::paletteBehind() const {
    return parentWidget() != nullptr ? parentWidget()->palette() : QPalette();
}

void PanelBox::takeColors() {
    const QPalette desktop = paletteBehind();
    const QColor ground = panelColorOn(desktop);
    const QColor text = readable(desktop.color(QPalette::Active, QPalette::WindowText), ground);
    QPalette changes;
    changes.setColor(QPalette::Window, ground);
    changes.setColor(QPalette::WindowText, text);
    changes.setColor(QPalette::Disabled, QPalette::WindowText, windowColor(changes, ground, shapeContrast));
    setPalette(changes);
}

void PanelBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const int top = titleHeight();
    paintPanel(painter, rect().adjusted(0, top, 0, 0), panelRadius, palette().color(QPalette::Active, QPalette::Window),
               panelBorderColor());
    if (top > 0) {
        // The title lies on what the box lies on.
        painter.setFont(titleFont());
        const auto alignment = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
        style()->drawItemText(&painter, QRect(0, 0, width(), top - smallSpacing),
                              static_cast<int>(alignment) | Qt::TextShowMnemonic, paletteBehind(), isEnabled(), title(),
                              QPalette::WindowText);
    }
}

} // namespace starbloom
