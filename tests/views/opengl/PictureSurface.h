// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/opengl/GlSurface.h"

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>

#include <cstdint>
#include <memory>

namespace starbloom {

/// Draws into a picture in memory, with a context of the driver that there is, and loses it when told to.
class PictureSurface final : public GlSurface {
public:
    explicit PictureSurface(QSurfaceFormat::RenderableType type = QSurfaceFormat::OpenGL) {
        const bool embedded = type == QSurfaceFormat::OpenGLES;
        m_format.setRenderableType(type);
        m_format.setVersion(3, embedded ? 0 : 3);
        m_format.setProfile(embedded ? QSurfaceFormat::NoProfile : QSurfaceFormat::CoreProfile);
        m_surface.setFormat(m_format);
        m_surface.create();
    }

    ~PictureSurface() override { dropContext(); }

    /// Whether there is OpenGL at all here.
    bool works() { return static_cast<bool>(makeCurrent()); }

    void setSize(const QSize& pixels, double pixelsPerPoint) {
        m_pixels = pixels;
        m_pixelsPerPoint = pixelsPerPoint;
    }

    void failAgain(int times) { m_failures = times; }

    /// As if what was in the graphics memory were gone: all volumes are dark.
    void spoilMemory() {
        auto& gl = *m_context->extraFunctions();
        const std::uint16_t dark = 0;
        for (unsigned texture = 1; texture < 100; ++texture) {
            if (gl.glIsTexture(texture) != 0) {
                gl.glBindTexture(GL_TEXTURE_3D, texture); // Fails for those that are flat.
                gl.glTexImage3D(GL_TEXTURE_3D, 0, GL_R16F, 1, 1, 1, 0, GL_RED, GL_HALF_FLOAT, &dark);
            }
        }
    }

    const QImage& picture() const { return m_picture; }

    void place(QWindow&, const QRect&) override {}

    void withdraw() override {}

    bool isOnScreen() const override { return true; }

    Result<void> makeCurrent() override {
        if (m_failures > 0) {
            --m_failures;
            return Error{"the context was lost"};
        }
        if (m_context == nullptr) {
            m_context = std::make_unique<QOpenGLContext>();
            m_context->setFormat(m_format);
            m_framebuffer = 0;
        }
        const bool made = m_context->isValid() || m_context->create();
        if (!made || !m_context->makeCurrent(&m_surface)) {
            m_context.reset();
            return Error{"there is no OpenGL"};
        }
        makeFramebuffer();
        return {};
    }

    void dropContext() override { m_context.reset(); }

    unsigned framebuffer() const override { return m_framebuffer; }

    void present() override {
        auto& gl = *m_context->extraFunctions();
        QImage upsideDown(m_pixels, QImage::Format_RGBX8888);
        gl.glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
        gl.glReadPixels(0, 0, m_pixels.width(), m_pixels.height(), GL_RGBA, GL_UNSIGNED_BYTE, upsideDown.bits());
        m_picture = upsideDown.mirrored();
    }

    Canvas canvas() const override { return {m_pixels, m_pixelsPerPoint}; }

private:
    void makeFramebuffer() {
        auto& gl = *m_context->extraFunctions();
        if (m_framebuffer == 0) {
            gl.glGenFramebuffers(1, &m_framebuffer);
            gl.glGenRenderbuffers(1, &m_pixelBuffer);
        }
        gl.glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
        gl.glBindRenderbuffer(GL_RENDERBUFFER, m_pixelBuffer);
        gl.glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, m_pixels.width(), m_pixels.height());
        gl.glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_pixelBuffer);
    }

    QSurfaceFormat m_format;
    QOffscreenSurface m_surface;
    std::unique_ptr<QOpenGLContext> m_context;
    unsigned m_framebuffer = 0;
    unsigned m_pixelBuffer = 0;
    QSize m_pixels{640, 480};
    double m_pixelsPerPoint = 1.0;
    int m_failures = 0;
    QImage m_picture;
};

} // namespace starbloom
