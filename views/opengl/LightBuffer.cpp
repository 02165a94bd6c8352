// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/LightBuffer.h"

#include "engine/raster/RasterKernels.h"

#include <QOpenGLExtraFunctions>

namespace starbloom {

namespace {

constexpr int wholeNumbers = 0x805B; // RGBA16. OpenGL ES has no name for it.

} // namespace

Result<void> LightBuffer::resize(QOpenGLExtraFunctions& gl, const QSize& pixels, bool embedded) {
    release(gl);
    if (!embedded && isComplete(gl, wholeNumbers, pixels)) {
        m_fullLight = static_cast<float>(starbloom::fullLight) / 65535.0F;
    } else if (isComplete(gl, GL_RGBA16F, pixels)) {
        m_fullLight = 1.0F;
    } else {
        release(gl);
        return Error{"the graphics driver cannot draw with 16 bits per channel"};
    }
    m_size = pixels;
    return {};
}

bool LightBuffer::isComplete(QOpenGLExtraFunctions& gl, int format, const QSize& pixels) {
    release(gl);
    gl.glGetError(); // What went wrong before is not told of this buffer.
    gl.glGenTextures(1, &m_texture);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    const GLenum type = format == wholeNumbers ? GL_UNSIGNED_SHORT : GL_HALF_FLOAT;
    gl.glTexImage2D(GL_TEXTURE_2D, 0, format, pixels.width(), pixels.height(), 0, GL_RGBA, type, nullptr);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    gl.glGenFramebuffers(1, &m_framebuffer);
    gl.glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
    gl.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_texture, 0);
    return gl.glGetError() == GL_NO_ERROR && gl.glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void LightBuffer::release(QOpenGLExtraFunctions& gl) {
    gl.glDeleteFramebuffers(1, &m_framebuffer);
    gl.glDeleteTextures(1, &m_texture);
    m_framebuffer = 0;
    m_texture = 0;
    m_size = QSize();
}

} // namespace starbloom
