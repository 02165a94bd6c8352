// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/RasterRenderer.h"
#include "views/StageRenderer.h"

#include <QImage>
#include <QRegion>
#include <QSize>

class QPainter;
class QWidget;

namespace starbloom {

/// The stage's picture drawn on the CPU, with one pixel for each pixel of the screen, and what of it the screen has
/// yet to be shown.
class RasterStage {
public:
    /// The widget that it draws outlives it.
    explicit RasterStage(const QWidget& widget)
        : m_widget(widget) {}

    /// The picture drawn last.
    const QImage& picture() const { return m_picture; }

    double pixelsPerPoint() const { return m_pixelsPerPoint; }

    /// Whether a moment can be drawn before it is painted: where the picture lies among the screen's pixels is known.
    bool isPlaced() const;

    /// The screen may show anything now; all of it is painted next.
    void forgetPlace() { m_placedSize = QSize(); }

    /// Draws a moment where the last one was. The answer is what has to be painted, in points. Only while placed.
    QRegion render(const StageMoment& moment);

    /// The show goes on without a picture drawn.
    void passOver() { m_passedOver = true; }

    /// Whether the picture can be painted as it is: no moment was passed over, and it goes to the same pixels.
    bool fits(const QPainter& painter) const;

    /// Draws a moment for the pixels that the painter covers.
    void renderFor(const QPainter& painter, const StageMoment& moment);

    /// Paints a part of the picture, which fits.
    void paint(QPainter& painter, const QRegion& region);

    /// For pictures of the stage at one pixel per point: with the screen's sprites, if they are of that size.
    RasterRenderer& pictureRenderer() { return m_pixelsPerPoint == 1.0 ? m_renderer : m_pictureRenderer; }

private:
    void render(const StageMoment& moment, const QSize& pixels, double pixelsPerPoint);

    const QWidget& m_widget;
    RasterRenderer m_renderer;
    RasterRenderer m_pictureRenderer; ///< Apart, as it keeps its sprites.
    QImage m_picture;
    LitArea m_lit;                 ///< Of m_picture.
    QSize m_placedSize;            ///< The widget's when m_picture was painted.
    double m_pixelsPerPoint = 1.0; ///< Of m_picture.
    bool m_passedOver = false;
};

} // namespace starbloom
