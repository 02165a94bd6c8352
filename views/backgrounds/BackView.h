// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QWidget>

namespace starbloom {

/// The ground and the border of panels, and how round their corners are, in points. Fixed colours, made for dark text.
constexpr QColor panelColor{227, 241, 255};
constexpr double panelRadius = 6.0;
QColor panelBorderColor();

/// A box with round corners and a thin border inside its edge. Children that reach into the corners cover them.
/// Used on the GUI thread.
class BackView : public QWidget {
protected:
    explicit BackView(QWidget* parent);

    void paintEvent(QPaintEvent* event) override;
};

} // namespace starbloom
