// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/OpenGlPainter.h"

#include "engine/raster/SpriteAtlas.h"

#include <QOpenGLExtraFunctions>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

namespace starbloom {

namespace {

/// As many as the CPU renderer keeps: a show has one image or a few.
constexpr std::size_t mostImages = 16;

/// Within 0..1; what is no number counts as 0.
float unit(float value) {
    return value > 0.0F ? std::min(value, 1.0F) : 0.0F;
}

/// In whole steps of the display, as the CPU renderer has it.
float backgroundLevel(float channel, float alpha) {
    return std::floor(unit(channel) * unit(alpha) * 255.0F + 0.5F) / 255.0F;
}

unsigned textureOf(QOpenGLExtraFunctions& gl, const SparkVolume& volume) {
    unsigned texture = 0;
    gl.glGenTextures(1, &texture);
    gl.glBindTexture(GL_TEXTURE_3D, texture);
    gl.glTexImage3D(GL_TEXTURE_3D, 0, GL_R16F, volume.side, volume.side, volume.levels, 0, GL_RED, GL_HALF_FLOAT,
                    volume.values.data());
    for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
        gl.glTexParameteri(GL_TEXTURE_3D, filter, GL_LINEAR);
    }
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R}) {
        gl.glTexParameteri(GL_TEXTURE_3D, axis, GL_CLAMP_TO_EDGE);
    }
    return texture;
}

} // namespace

PreparedImage PreparedImage::of(std::shared_ptr<const SparkImage> image) {
    PreparedImage prepared;
    prepared.volume = std::make_shared<const SparkVolume>(SparkVolume::of(*image));
    prepared.turns = !SpriteAtlas(image).isRotationInvariant();
    prepared.image = std::move(image);
    return prepared;
}

Result<std::unique_ptr<OpenGlPainter>> OpenGlPainter::make(std::vector<PreparedImage> prepared) {
    QOpenGLContext& context = *QOpenGLContext::currentContext();
    const auto shaders = Shaders::compile(*context.extraFunctions(), context.isOpenGLES());
    if (!shaders) {
        return shaders.error();
    }
    return std::unique_ptr<OpenGlPainter>(new OpenGlPainter(context, shaders.value(), std::move(prepared)));
}

OpenGlPainter::OpenGlPainter(QOpenGLContext& context, const Shaders& shaders, std::vector<PreparedImage> prepared)
    : m_context(&context)
    , m_gl(*context.extraFunctions())
    , m_shaders(shaders)
    , m_prepared(std::move(prepared)) {
    m_gl.glGenVertexArrays(1, &m_vertexArray);
    findUniforms();
}

OpenGlPainter::~OpenGlPainter() {
    if (m_context == nullptr || QOpenGLContext::currentContext() != m_context) {
        return;
    }
    forgetBirths();
    for (const Volume& volume : m_volumes) {
        m_gl.glDeleteTextures(1, &volume.texture);
    }
    m_light.release(m_gl);
    m_gl.glDeleteVertexArrays(1, &m_vertexArray);
    m_shaders.release(m_gl);
}

void OpenGlPainter::findUniforms() {
    const auto find = [this](unsigned program, const char* name) { return m_gl.glGetUniformLocation(program, name); };
    const unsigned sparks = m_shaders.sparks;
    m_uniforms = {find(sparks, "now"),
                  find(sparks, "law"),
                  find(sparks, "colorSpeed"),
                  find(sparks, "picture"),
                  find(sparks, "lift"),
                  find(sparks, "pixelsPerPoint"),
                  find(sparks, "image"),
                  find(sparks, "levels"),
                  find(sparks, "gain"),
                  find(m_shaders.resolve, "gain"),
                  find(m_shaders.resolve, "background")};
}

Result<void> OpenGlPainter::draw(const StageMoment& moment, const Canvas& canvas, unsigned framebuffer) {
    const QSize& pixels = canvas.pixels;
    const bool resized = m_light.size() != pixels;
    if (resized) {
        GLint most = 0;
        m_gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &most);
        if (std::max(pixels.width(), pixels.height()) > most) {
            return Error{"the stage is larger than the graphics driver can draw"};
        }
        if (auto made = m_light.resize(m_gl, pixels, m_context->isOpenGLES()); !made) {
            return made;
        }
    }
    followBirths(moment);
    m_gl.glViewport(0, 0, pixels.width(), pixels.height());
    for (const GLenum unwanted : {GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST, GL_CULL_FACE, GL_DITHER}) {
        m_gl.glDisable(unwanted);
    }
    m_gl.glBindVertexArray(m_vertexArray);
    addLight(moment, canvas);
    resolve(moment.background, framebuffer);
    m_gl.glBindVertexArray(0);
    // Asked only where something large was made, as a driver may have to wait for its answer.
    if (const GLenum error = resized ? m_gl.glGetError() : GL_NO_ERROR; error != GL_NO_ERROR) {
        return Error{"the graphics driver reports error " + std::to_string(error)};
    }
    return {};
}

void OpenGlPainter::followBirths(const StageMoment& moment) {
    if (moment.show != m_show) {
        forgetBirths();
        m_show = moment.show;
    }
    for (auto entry = m_rings.begin(); entry != m_rings.end();) {
        auto& [number, ring] = *entry;
        if (std::ranges::find(moment.sparks, number, &SparkBatch::number) == moment.sparks.end()) {
            ring.release(m_gl);
            entry = m_rings.erase(entry);
        } else {
            ++entry;
        }
    }
    for (const SparkBatch& batch : moment.sparks) {
        m_sentBytes += m_rings[batch.number()].follow(m_gl, batch, moment.time);
    }
}

void OpenGlPainter::forgetBirths() {
    for (auto& [number, ring] : m_rings) {
        ring.release(m_gl);
    }
    m_rings.clear();
}

void OpenGlPainter::addLight(const StageMoment& moment, const Canvas& canvas) {
    m_gl.glBindFramebuffer(GL_FRAMEBUFFER, m_light.framebuffer());
    m_gl.glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    m_gl.glClear(GL_COLOR_BUFFER_BIT);
    m_gl.glEnable(GL_BLEND);
    m_gl.glBlendEquation(GL_FUNC_ADD);
    m_gl.glBlendFunc(GL_ONE, GL_ONE);
    m_gl.glUseProgram(m_shaders.sparks);
    const SplitTime now(moment.time);
    m_gl.glUniform2f(m_uniforms.now, now.high, now.low);
    m_gl.glUniform2f(m_uniforms.picture, static_cast<float>(m_light.size().width()),
                     static_cast<float>(m_light.size().height()));
    m_gl.glUniform1f(m_uniforms.pixelsPerPoint, static_cast<float>(canvas.pixelsPerPoint));
    m_gl.glUniform1f(m_uniforms.lift, static_cast<float>(canvas.lift));
    m_gl.glUniform1f(m_uniforms.gain, m_light.fullLight());
    m_gl.glActiveTexture(GL_TEXTURE0);
    for (GLuint attribute = 0; attribute < 3; ++attribute) {
        m_gl.glEnableVertexAttribArray(attribute);
        m_gl.glVertexAttribDivisor(attribute, 1);
    }
    for (const SparkBatch& batch : moment.sparks) {
        if (batch.law().image != nullptr) {
            addSparks(batch, m_rings[batch.number()], canvas.pixelsPerPoint);
        }
    }
    // The pass that follows reads no records, and those of a batch that is gone may be gone, too.
    for (GLuint attribute = 0; attribute < 3; ++attribute) {
        m_gl.glDisableVertexAttribArray(attribute);
    }
    m_gl.glDisable(GL_BLEND);
}

void OpenGlPainter::addSparks(const SparkBatch& batch, const SparkRing& ring, double pixelsPerPoint) {
    const auto pieces = ring.pieces();
    if (pieces.empty()) {
        return;
    }
    const SparkLaw& law = batch.law();
    const Volume& image = volumeOf(law.image);
    const SparkVolume& volume = *image.prepared.volume;
    m_gl.glBindTexture(GL_TEXTURE_3D, image.texture);
    m_gl.glUniform4f(m_uniforms.law, law.lifetime, 0.5F * law.yAcceleration, law.scaleSpeed, law.spin);
    m_gl.glUniform4f(m_uniforms.colorSpeed, law.colorSpeed.red, law.colorSpeed.green, law.colorSpeed.blue,
                     law.colorSpeed.alpha);
    const auto imagePoints = static_cast<float>(volume.imagePixels / law.image->pixelsPerPoint);
    m_gl.glUniform4f(m_uniforms.image, imagePoints * static_cast<float>(pixelsPerPoint),
                     static_cast<float>(volume.imagePixels), static_cast<float>(volume.largestSize),
                     image.prepared.turns ? 1.0F : 0.0F);
    m_gl.glUniform4f(m_uniforms.levels, static_cast<float>(SparkVolume::smallestSize),
                     static_cast<float>(SparkVolume::levelsPerOctave), static_cast<float>(volume.levels),
                     static_cast<float>(volume.side));
    m_gl.glBindBuffer(GL_ARRAY_BUFFER, ring.buffer());
    for (const SparkRing::Piece& piece : pieces) {
        const auto attribute = [&](GLuint index, GLint count, std::size_t offset) {
            m_gl.glVertexAttribPointer(index, count, GL_FLOAT, GL_FALSE, sizeof(SparkRecord),
                                       reinterpret_cast<const void*>(piece.first * sizeof(SparkRecord) + offset));
        };
        attribute(0, 4, offsetof(SparkRecord, timeHigh));
        attribute(1, 3, offsetof(SparkRecord, velocityX));
        attribute(2, 4, offsetof(SparkRecord, red));
        m_gl.glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(piece.count));
    }
}

const OpenGlPainter::Volume& OpenGlPainter::volumeOf(const std::shared_ptr<const SparkImage>& image) {
    const auto has = [&image](const PreparedImage& prepared) { return prepared.image == image; };
    const auto known = std::ranges::find_if(m_volumes, has, &Volume::prepared);
    if (known != m_volumes.end()) {
        return *known;
    }
    if (m_volumes.size() >= mostImages) {
        for (const Volume& volume : m_volumes) {
            m_gl.glDeleteTextures(1, &volume.texture);
        }
        m_volumes.clear();
    }
    const auto prepared = std::ranges::find_if(m_prepared, has);
    Volume volume{prepared != m_prepared.end() ? *prepared : PreparedImage::of(image)};
    volume.texture = textureOf(m_gl, *volume.prepared.volume);
    m_volumes.push_back(std::move(volume));
    return m_volumes.back();
}

void OpenGlPainter::resolve(const Color& background, unsigned framebuffer) {
    m_gl.glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    m_gl.glUseProgram(m_shaders.resolve);
    m_gl.glBindTexture(GL_TEXTURE_2D, m_light.texture());
    m_gl.glUniform1f(m_uniforms.resolveGain, 1.0F / m_light.fullLight());
    m_gl.glUniform3f(m_uniforms.background, backgroundLevel(background.red, background.alpha),
                     backgroundLevel(background.green, background.alpha),
                     backgroundLevel(background.blue, background.alpha));
    m_gl.glDrawArrays(GL_TRIANGLES, 0, 3);
}

} // namespace starbloom
