// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QWidget>

class QPainter;

namespace starbloom {

/// A widget, or a rectangle in it.
struct WidgetPart {
    WidgetPart(const QWidget* whole)
        : WidgetPart(whole, whole->rect()) {}

    WidgetPart(const QWidget* around, const QRect& part)
        : widget(around)
        , rect(part) {}

    const QWidget* widget;
    QRect rect;
};

/// A window as it was put onto a canvas.
struct PlacedWindow {
    const QWidget* window;
    QPointF corner; ///< Top left of its client area.
    double scale;

    /// Where something in the window is on the canvas.
    QRectF rectOf(const WidgetPart& part) const;
};

/// A picture of the introduction in the making: windows on a dark ground, and frames around what matters. Lengths are
/// in points, of which the canvas has 600 x 400, with two pixels each.
class PictureCanvas {
public:
    static constexpr int width = 600;
    static constexpr int height = 400;

    /// Left free around a window.
    static constexpr double margin = 14.0;

    PictureCanvas();

    /// Puts a window there as it looks now, with a title bar above the corner that is given, and a shadow.
    PlacedWindow addWindow(QWidget& window, const QPointF& corner, double scale);

    /// In the middle or at the bottom, and as large as there is room for it, but not larger than it is.
    PlacedWindow addWindow(QWidget& window, Qt::Alignment alignment = Qt::AlignVCenter);

    /// Fills the canvas with a picture.
    void fill(const QImage& image);

    /// Lets what is there step back.
    void dim();

    void addFrame(const QRectF& rect);

    const QImage& image() const { return m_image; }

private:
    void drawFrame(QPainter& painter, const QWidget& window, const QPointF& corner, double scale) const;

    QImage m_image;
};

} // namespace starbloom
