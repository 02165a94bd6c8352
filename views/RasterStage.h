// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/FrameCrew.h"
#include "engine/raster/RasterRenderer.h"
#include "views/StageRenderer.h"
#include "views/WindowMemory.h"

#include <QImage>
#include <QRegion>
#include <QSize>

#include <memory>
#include <optional>
#include <vector>

class QPainter;
class QTransform;
class QWidget;

namespace starbloom {

/// The stage's picture drawn on the CPU, with one pixel for each pixel of the screen.
///
/// While the stage plays and nothing else is painted where it lies, moments are drawn straight into the window's memory
/// and handed to the screen from there. Qt's painting, which asks all widgets of the window and copies the picture,
/// costs as much as the picture. Otherwise the picture has memory of its own and is painted as any other widget is.
class RasterStage {
public:
    /// The widget that it draws outlives it.
    explicit RasterStage(const QWidget& widget)
        : m_widget(widget) {}

    /// The picture drawn last; a copy of it where it is in the window's memory, and none when that is gone.
    QImage picture() const;

    double pixelsPerPoint() const { return m_pixelsPerPoint; }

    /// Whether a moment can be drawn before it is painted: where the picture lies among the screen's pixels is known.
    bool isPlaced() const;

    /// The screen may show anything now; all of it is painted next.
    void forgetPlace() { m_placedSize = QSize(); }

    /// Draws a moment in the window's memory and shows what has changed. False when it cannot, and nothing is shown:
    /// where the stage lies is not known yet, a part of it is out of sight, or something is painted above it. Only
    /// while the stage can be seen.
    bool present(const StageMoment& moment);

    /// Where present() has shown it among the pixels of a window whose memory an X11 server shares; else nothing.
    std::optional<QRect> sharedPixels() const;

    /// Draws a moment into memory that holds the frame that `lit` tells of. Nothing here changes but what drawing
    /// needs.
    void renderElsewhere(const StageMoment& moment, const RasterTarget& target, LitArea& lit);

    /// Takes into the window's memory what the screen shows already.
    void take(const QImage& shown);

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
    void renderOwn(const StageMoment& moment, const QSize& pixels, double pixelsPerPoint);
    void render(const StageMoment& moment, const RasterTarget& target, double pixelsPerPoint);
    QRegion changedPoints();
    QTransform toWindowPixels() const;
    bool ownsItsPlace() const;

    const QWidget& m_widget;
    std::shared_ptr<FrameCrew> m_crew = std::make_shared<FrameCrew>();
    RasterRenderer m_renderer{m_crew};
    RasterRenderer m_pictureRenderer{m_crew}; ///< Apart, as it keeps its sprites.
    QImage m_picture;                         ///< None while m_target is in the window's memory.
    RasterTarget m_target;                    ///< What has been drawn last.
    LitArea m_lit;                            ///< Of m_target.
    std::vector<QRect> m_changedRects;        ///< Of the last frame; kept for its memory.
    WindowMemory m_memory;
    QSize m_placedSize;            ///< The widget's when it was painted last.
    double m_pixelsPerPoint = 1.0; ///< Of m_target.
    bool m_passedOver = false;
    bool m_memoryLasts = true; ///< The window's memory still holds the last frame when the next one is drawn.
};

} // namespace starbloom
