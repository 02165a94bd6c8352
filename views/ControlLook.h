// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;
class QPalette;
class QWidget;

namespace starbloom {

/// The look that the program's own controls share. Every colour is computed from a palette, so that the controls fit
/// light and dark desktops alike. All lengths are in points. Pure functions of their arguments; GUI thread.

/// How opaque the contents of a disabled control are: still to be made out, clearly off.
constexpr double disabledOpacity = 0.4;

/// How high a control of the toolbar is.
constexpr int controlHeight = 32;

/// The distances between things, in points: what belongs together, the usual one, and around windows and panels.
constexpr int smallSpacing = 4;
constexpr int usualSpacing = 8;
constexpr int wideSpacing = 12;

/// The least contrast with what is behind it: of text, and of what is no text, but must be seen.
constexpr double textContrast = 4.5;
constexpr double shapeContrast = 3.0;

struct ControlState {
    bool enabled = true;
    bool hovered = false;
    bool pressed = false;
    bool focused = false; ///< Whether to show it: a focus that came by a mouse click is not shown.
};

/// The state of a widget, or of one that has parts: the focus may be in any of them.
ControlState controlState(const QWidget& widget, bool pressed = false);

/// The ratio of luminances of two opaque colours, 1..21, as guidelines for accessibility define it.
double contrast(const QColor& one, const QColor& other);

/// The colour, moved towards the text's colour as far as it takes to stand out from the window.
QColor windowColor(const QPalette& palette, const QColor& color, double atLeast);
QColor linkColor(const QPalette& palette);
QColor errorColor(const QPalette& palette);

/// The rectangle moved to the nearest borders of the screen's pixels: edges stay sharp at any scale factor.
QRectF onPixels(const QPainter& painter, const QRectF& rect);

/// A line of the frame's colour along the inside of the rectangle.
void paintOutline(QPainter& painter, const QRectF& rect, const QPalette& palette, double radius);

/// The ground and the frame of a control that fills the rectangle. Returns what is left for its contents.
QRectF paintControl(QPainter& painter, const QRectF& rect, const QPalette& palette, const ControlState& state);

/// The ground of what is chosen within a control, or is just under the pointer.
void paintChosen(QPainter& painter, const QRectF& rect, const QPalette& palette, const ControlState& state);
void paintHovered(QPainter& painter, const QRectF& rect, const QPalette& palette, const ControlState& state);

void paintFocusRing(QPainter& painter, const QRectF& rect, const QPalette& palette);

/// A ground with round corners, and a thin border along its inside, which may let the ground shine through.
void paintPanel(QPainter& painter, const QRectF& rect, double radius, const QColor& ground, const QColor& border);

/// A tool tip that shows the text letter by letter, even one that looks like HTML.
QString plainToolTip(const QString& text);

} // namespace starbloom
