// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "views/StageRenderer.h"
#include "views/opengl/GlSurface.h"
#include "views/opengl/LightBuffer.h"
#include "views/opengl/Shaders.h"
#include "views/opengl/SparkRing.h"
#include "views/opengl/SparkVolume.h"

#include <QOpenGLContext>
#include <QPointer>

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

class QOpenGLExtraFunctions;

namespace starbloom {

/// A volume, and the image that it is of.
struct PreparedImage {
    std::shared_ptr<const SparkImage> image;
    std::shared_ptr<const SparkVolume> volume;
    bool turns = false; ///< Whether it looks different from different sides.

    static PreparedImage of(std::shared_ptr<const SparkImage> image);
};

/// Draws moments of a show with OpenGL 3.3 or OpenGL ES 3.0, as the CPU renderer draws them within a small tolerance.
///
/// Births are sent when they have happened; where a spark is, its colour and size, the vertex shader works out from its
/// birth. Light adds up in a buffer of its own; one pass puts it over the background.
///
/// Belongs to one context, which must be current for all calls and should be for the destructor: otherwise what it has
/// in the graphics memory goes when the context does.
class OpenGlPainter {
public:
    /// For the current context. Images that are not prepared are when they are first drawn, which may take some
    /// hundredths of a second.
    static Result<std::unique_ptr<OpenGlPainter>> make(std::vector<PreparedImage> prepared);

    ~OpenGlPainter();

    OpenGlPainter(const OpenGlPainter&) = delete;
    OpenGlPainter& operator=(const OpenGlPainter&) = delete;

    /// Draws a moment into all pixels of a framebuffer. Moments of one show come in order.
    Result<void> draw(const StageMoment& moment, const Canvas& canvas, unsigned framebuffer);

    /// How many bytes of births have been sent so far.
    std::uint64_t sentBytes() const { return m_sentBytes; }

private:
    OpenGlPainter(QOpenGLContext& context, const Shaders& shaders, std::vector<PreparedImage> prepared);

    struct Volume {
        PreparedImage prepared;
        unsigned texture = 0;
    };

    void findUniforms();
    void followBirths(const StageMoment& moment);
    void forgetBirths();
    void addLight(const StageMoment& moment, const Canvas& canvas);
    void addSparks(const SparkBatch& batch, const SparkRing& ring, double pixelsPerPoint);
    const Volume& volumeOf(const std::shared_ptr<const SparkImage>& image);
    void resolve(const Color& background, unsigned framebuffer);

    QPointer<QOpenGLContext> m_context;
    QOpenGLExtraFunctions& m_gl;
    Shaders m_shaders;
    std::vector<PreparedImage> m_prepared;
    std::vector<Volume> m_volumes;
    unsigned m_vertexArray = 0;
    LightBuffer m_light;
    std::uint64_t m_show = 0;
    std::map<std::uint64_t, SparkRing> m_rings; ///< By the number of their batch.
    std::uint64_t m_sentBytes = 0;

    struct Uniforms {
        int now, law, colorSpeed, picture, lift, pixelsPerPoint, image, levels, gain;
        int resolveGain, background;
    };

    Uniforms m_uniforms{};
};

} // namespace starbloom
