// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/opengl/GlSurface.h"

#include <QPointer>
#include <QSurfaceFormat>

#include <functional>
#include <memory>

class QOpenGLContext;
class QOffscreenSurface;

namespace starbloom {

/// A window over the stage, within the stage's own window, that OpenGL draws on.
///
/// A plain child window and nothing else, because it leaves the window as it is. The toolkit's OpenGL widget would have
/// the whole window destroyed and made again at the change-over, and then put together from textures at each frame,
/// controls and all. An offscreen context would have each frame read back and copied twice, which costs more than
/// drawing it on the CPU. What is below a child window stays in place, and is seen until the child has drawn: the
/// system leaves its pixels as they are.
class WindowSurface final : public GlSurface {
public:
    /// The call comes when the surface has to be drawn again.
    explicit WindowSurface(std::function<void()> redraw);
    ~WindowSurface() override;

    /// Makes the context, before there is a window. The answer is the name of what draws.
    Result<std::string> open();

    void place(QWindow& window, const QRect& stage) override;
    void withdraw() override;
    bool isOnScreen() const override;
    Result<void> makeCurrent() override;
    void dropContext() override;
    unsigned framebuffer() const override;
    void present() override;
    Canvas canvas() const override;

private:
    class Window;

    Result<void> makeContext();
    void findResetStatus();

    std::function<void()> m_redraw;
    QSurfaceFormat m_format;
    std::unique_ptr<QOpenGLContext> m_context;
    unsigned (*m_resetStatus)() = nullptr; ///< Tells whether the graphics processor was reset; nothing if none can.
    QPointer<QWindow> m_window; ///< Belongs to the stage's window, and goes with it if it is not taken away before.
};

} // namespace starbloom
