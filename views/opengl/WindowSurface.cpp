// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/WindowSurface.h"

#include <QEvent>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QWindow>

#include <utility>

namespace starbloom {

namespace {

QSurfaceFormat formatOf(QSurfaceFormat::RenderableType type, int major, int minor) {
    QSurfaceFormat format;
    format.setRenderableType(type);
    format.setVersion(major, minor);
    format.setProfile(type == QSurfaceFormat::OpenGL ? QSurfaceFormat::CoreProfile : QSurfaceFormat::NoProfile);
    format.setOption(QSurfaceFormat::ResetNotification);
    format.setRedBufferSize(8);
    format.setGreenBufferSize(8);
    format.setBlueBufferSize(8);
    return format;
}

} // namespace

class WindowSurface::Window final : public QWindow {
public:
    Window(QWindow* parent, const QSurfaceFormat& format, const std::function<void()>& redraw)
        : QWindow(parent)
        , m_redraw(redraw) {
        setSurfaceType(OpenGLSurface);
        setFormat(format);
        setFlags(Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
    }

protected:
    bool event(QEvent* event) override {
        if (event->type() == QEvent::Expose && isExposed()) {
            m_redraw();
        }
        return QWindow::event(event);
    }

private:
    std::function<void()> m_redraw;
};

WindowSurface::WindowSurface(std::function<void()> redraw)
    : m_redraw(std::move(redraw)) {}

WindowSurface::~WindowSurface() {
    withdraw();
}

Result<std::string> WindowSurface::open() {
    std::string name;
    for (const QSurfaceFormat& format :
         {formatOf(QSurfaceFormat::OpenGL, 3, 3), formatOf(QSurfaceFormat::OpenGLES, 3, 0)}) {
        m_format = format;
        if (!makeContext()) {
            continue;
        }
        QOffscreenSurface surface;
        surface.setFormat(m_context->format());
        surface.create();
        if (m_context->makeCurrent(&surface)) {
            const auto* const text = m_context->functions()->glGetString(GL_RENDERER);
            name = text != nullptr ? reinterpret_cast<const char*>(text) : "";
            findResetStatus();
            m_context->doneCurrent();
            return name;
        }
    }
    m_context.reset();
    return Error{"there is neither OpenGL 3.3 nor OpenGL ES 3.0"};
}

Result<void> WindowSurface::makeContext() {
    m_context = std::make_unique<QOpenGLContext>();
    m_context->setFormat(m_format);
    const auto version = std::pair(m_format.majorVersion(), m_format.minorVersion());
    if (!m_context->create() || m_context->format().version() < version) {
        m_context.reset();
        return Error{"cannot make a context"};
    }
    return {};
}

void WindowSurface::place(QWindow& window, const QRect& stage) {
    if (m_window != nullptr && m_window->parent() != &window) {
        withdraw();
    }
    if (m_window == nullptr) {
        m_window = new Window(&window, m_format, m_redraw);
        m_window->setGeometry(stage);
        m_window->setVisible(true);
    } else if (m_window->geometry() != stage) {
        m_window->setGeometry(stage);
    }
}

void WindowSurface::withdraw() {
    if (m_window != nullptr && m_context != nullptr && QOpenGLContext::currentContext() == m_context.get()) {
        m_context->doneCurrent();
    }
    delete m_window;
}

bool WindowSurface::isOnScreen() const {
    return m_window != nullptr && m_window->isExposed();
}

Result<void> WindowSurface::makeCurrent() {
    const bool isNew = m_context == nullptr;
    if (isNew) {
        if (auto made = makeContext(); !made) {
            return made;
        }
    }
    if (!m_context->makeCurrent(m_window) || (m_resetStatus != nullptr && m_resetStatus() != GL_NO_ERROR)) {
        return Error{"the context was lost"};
    }
    if (isNew) {
        findResetStatus();
    }
    return {};
}

void WindowSurface::findResetStatus() {
    struct Way {
        const char* extension;
        const char* function;
    };

    const char* const khronos = m_context->isOpenGLES() ? "glGetGraphicsResetStatusKHR" : "glGetGraphicsResetStatus";
    for (const Way& way : {Way{"GL_KHR_robustness", khronos}, Way{"GL_ARB_robustness", "glGetGraphicsResetStatusARB"},
                           Way{"GL_EXT_robustness", "glGetGraphicsResetStatusEXT"}}) {
        if (m_resetStatus == nullptr && m_context->hasExtension(way.extension)) {
            m_resetStatus = reinterpret_cast<unsigned (*)()>(m_context->getProcAddress(way.function));
        }
    }
}

void WindowSurface::dropContext() {
    m_resetStatus = nullptr;
    m_context.reset();
}

unsigned WindowSurface::framebuffer() const {
    return m_context->defaultFramebufferObject();
}

void WindowSurface::present() {
    m_context->swapBuffers(m_window);
}

Canvas WindowSurface::canvas() const {
    // A window's place and size are rounded to pixels each for itself, a widget's edges one by one. Where both come to
    // different heights, the stage keeps its bottom edge: all that is seen hangs on it.
    const double scale = m_window->devicePixelRatio();
    const QRect points = m_window->geometry();
    const QSize pixels = (QSizeF(points.size()) * scale).toSize().expandedTo(QSize(1, 1));
    const int bottom = qRound(points.y() * scale) + pixels.height();
    return {pixels, scale, bottom - qRound((points.y() + points.height()) * scale)};
}

} // namespace starbloom
