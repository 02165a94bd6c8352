// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <QRect>
#include <QSize>

#include <string>

class QWindow;

namespace starbloom {

/// The pixels to draw on, and how the stage lies in them.
struct Canvas {
    QSize pixels;
    double pixelsPerPoint = 1.0;
    int lift = 0; ///< How many pixels the stage's bottom edge lies above the canvas's own.
};

/// What OpenGL draws on, and the context that it draws with: a window over the stage, or a test's picture.
///
/// Owned by the renderer; GUI thread.
class GlSurface {
public:
    virtual ~GlSurface() = default;

    // See StageRenderer.
    virtual void place(QWindow& window, const QRect& stage) = 0;
    virtual void withdraw() = 0;

    virtual bool isOnScreen() const = 0;

    /// Has the context current for this surface, and makes it if there is none. A context that was lost is no error: it
    /// is dropped, and another is made at the next call.
    virtual Result<void> makeCurrent() = 0;

    /// Drops the context and all that it has.
    virtual void dropContext() = 0;

    /// The framebuffer to draw into.
    virtual unsigned framebuffer() const = 0;

    /// What was drawn goes to the screen.
    virtual void present() = 0;

    virtual Canvas canvas() const = 0;
};

} // namespace starbloom
