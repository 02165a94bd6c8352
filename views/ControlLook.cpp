// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ControlLook.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QTextDocument>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace starbloom {

namespace {

constexpr double cornerRadius = 5.0;
constexpr double chosenRadius = 3.0;

/// Around the frame there is room for the focus ring.
constexpr double margin = 2.0;
constexpr double ringWidth = 2.0;

/// How far the colours of the parts are on their way from the ground to the text.
constexpr double framePart = 0.35;
constexpr double hoveredPart = 0.06;
constexpr double pressedPart = 0.16;
constexpr double chosenAndDisabledPart = 0.18;

QColor mix(const QColor& from, const QColor& to, double part) {
    const auto channel = [part](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * part)); };
    return {channel(from.red(), to.red()), channel(from.green(), to.green()), channel(from.blue(), to.blue())};
}

// Not the palette's colours of disabled controls: how faint they are is the desktop's guess, often too faint to see.
QColor active(const QPalette& palette, QPalette::ColorRole role) {
    return palette.color(QPalette::Active, role);
}

QColor groundColor(const QPalette& palette, double part) {
    return mix(active(palette, QPalette::Button), active(palette, QPalette::ButtonText), part);
}

double luminance(const QColor& color) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// A length in points that is a whole number of pixels, at least one.
double lineWidth(const QPainter& painter, double points) {
    const double scale = painter.deviceTransform().m11();
    return std::max(1.0, std::floor(points * scale)) / scale;
}

QRectF shrunk(const QRectF& rect, double by) {
    return rect.adjusted(by, by, -by, -by);
}

void paintFilled(QPainter& painter, const QRectF& rect, double radius, const QColor& color) {
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, color);
}

void paintRing(QPainter& painter, const QRectF& rect, double radius, double width, const QColor& color) {
    const double innerRadius = std::max(0.0, radius - width);
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    path.addRoundedRect(shrunk(rect, width), innerRadius, innerRadius);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path, color);
}

} // namespace

ControlState controlState(const QWidget& widget, bool pressed) {
    const QWidget* focus = QApplication::focusWidget();
    ControlState state;
    state.enabled = widget.isEnabled();
    state.hovered = state.enabled && widget.underMouse();
    state.pressed = pressed;
    state.focused = focus != nullptr && (focus == &widget || widget.isAncestorOf(focus)) &&
                    widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
    return state;
}

double contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor windowColor(const QPalette& palette, const QColor& color, double atLeast) {
    constexpr int steps = 20;
    const QColor window = active(palette, QPalette::Window);
    const QColor text = active(palette, QPalette::WindowText);
    QColor result = color;
    for (int step = 1; step <= steps && contrast(result, window) < atLeast; ++step) {
        result = mix(color, text, static_cast<double>(step) / steps);
    }
    return result;
}

QColor linkColor(const QPalette& palette) {
    return windowColor(palette, active(palette, QPalette::Link), textContrast);
}

QColor errorColor(const QPalette& palette) {
    return windowColor(palette, QColor(0xd0, 0x21, 0x2d), textContrast);
}

QRectF onPixels(const QPainter& painter, const QRectF& rect) {
    const QTransform toPixels = painter.deviceTransform();
    const QRectF pixels = toPixels.mapRect(rect);
    const QPointF topLeft(std::round(pixels.left()), std::round(pixels.top()));
    const QPointF bottomRight(std::round(pixels.right()), std::round(pixels.bottom()));
    return toPixels.inverted().mapRect(QRectF(topLeft, bottomRight));
}

void paintOutline(QPainter& painter, const QRectF& rect, const QPalette& palette, double radius) {
    paintRing(painter, rect, radius, lineWidth(painter, 1.0), groundColor(palette, framePart));
}

QRectF paintControl(QPainter& painter, const QRectF& rect, const QPalette& palette, const ControlState& state) {
    const QRectF frame = onPixels(painter, shrunk(rect, margin));
    const double line = lineWidth(painter, 1.0);
    painter.setOpacity(state.enabled ? 1.0 : disabledOpacity);
    const double part = !state.enabled ? 0.0 : state.pressed ? pressedPart : state.hovered ? hoveredPart : 0.0;
    // A little smaller than the frame, so that it does not shine through at the rounded corners.
    paintFilled(painter, shrunk(frame, line / 2.0), cornerRadius - line / 2.0, groundColor(palette, part));
    paintOutline(painter, frame, palette, cornerRadius);
    if (state.focused) {
        paintFocusRing(painter, shrunk(frame, -line), palette);
    }
    return shrunk(frame, line);
}

void paintChosen(QPainter& painter, const QRectF& rect, const QPalette& palette, const ControlState& state) {
    const QColor color =
        state.enabled ? active(palette, QPalette::Highlight) : groundColor(palette, chosenAndDisabledPart);
    paintFilled(painter, onPixels(painter, rect), chosenRadius, color);
}

void paintHovered(QPainter& painter, const QRectF& rect, const QPalette& palette, const ControlState& state) {
    const QColor color = groundColor(palette, state.pressed ? pressedPart : hoveredPart);
    paintFilled(painter, onPixels(painter, rect), chosenRadius, color);
}

void paintFocusRing(QPainter& painter, const QRectF& rect, const QPalette& palette) {
    const double width = lineWidth(painter, ringWidth);
    const QColor color = windowColor(palette, active(palette, QPalette::Highlight), shapeContrast);
    paintRing(painter, onPixels(painter, rect), cornerRadius + width / 2.0, width, color);
}

void paintPanel(QPainter& painter, const QRectF& rect, double radius, const QColor& ground, const QColor& border) {
    const QRectF frame = onPixels(painter, rect);
    paintFilled(painter, frame, radius, ground);
    paintRing(painter, frame, radius, lineWidth(painter, 1.0), border);
}

QString plainToolTip(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text;
}

} // namespace starbloom
