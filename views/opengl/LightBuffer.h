// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <QSize>

class QOpenGLExtraFunctions;

namespace starbloom {

/// Where light adds up before it becomes pixels: 16 bits per channel, so that many sparks too faint to be seen one by
/// one can be seen together, and nothing is cut off before the background is there.
///
/// Whole numbers, as the CPU renderer has, where the context can draw them: the sums are the same, and a faint spark
/// counts the same wherever it falls. Half floats otherwise.
class LightBuffer {
public:
    /// Makes one of that size for the current context, instead of the one that was there.
    Result<void> resize(QOpenGLExtraFunctions& gl, const QSize& pixels, bool embedded);

    const QSize& size() const { return m_size; }

    unsigned framebuffer() const { return m_framebuffer; }

    unsigned texture() const { return m_texture; }

    /// What full brightness of the screen is in this buffer.
    float fullLight() const { return m_fullLight; }

    void release(QOpenGLExtraFunctions& gl);

private:
    bool isComplete(QOpenGLExtraFunctions& gl, int format, const QSize& pixels);

    QSize m_size;
    unsigned m_framebuffer = 0;
    unsigned m_texture = 0;
    float m_fullLight = 1.0F;
};

} // namespace starbloom
