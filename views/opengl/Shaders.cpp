// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/Shaders.h"

#include <QOpenGLExtraFunctions>

#include <string>

namespace starbloom {

namespace {

constexpr const char* desktopHead = "#version 330 core\n";
constexpr const char* embeddedHead = "#version 300 es\n"
                                     "precision highp float;\nprecision highp int;\n"
                                     "precision highp sampler2D;\nprecision highp sampler3D;\n";

// A spark at a moment, in the CPU renderer's order of operations and with its steps of position, size and angle, so
// that both give the same picture.
constexpr const char* sparkVertex = R"(
layout(location = 0) in vec4 birth;  // moment in two parts, place
layout(location = 1) in vec3 course; // velocity, scale
layout(location = 2) in vec4 color;

uniform vec2 now;         // in two parts
uniform vec4 law;         // lifetime, half the acceleration, speed of scale, spin
uniform vec4 colorSpeed;
uniform vec2 picture;     // pixels
uniform float lift;       // of the stage's bottom edge, pixels
uniform float pixelsPerPoint;
uniform vec4 image;       // its size at scale 1 and its own pixels, largest level's size, 1 if it is seen to turn
uniform vec4 levels;      // size of the first, levels per octave, how many, values along a side

flat out vec2 centre;
flat out vec3 tint;
flat out vec2 turn;       // cosine and sine
flat out vec2 lookup;     // values per pixel, level

float inSteps(float size) {
    if (size < 16.0) {
        return floor(size * 8.0 + 0.5) / 8.0;
    }
    return uintBitsToFloat(((floatBitsToUint(min(size, 2048.0)) + 0x10000u) >> 17) << 17);
}

vec2 placeInSteps(vec2 place, float size) {
    int coarser = size < 32.0 ? 0 : size < 64.0 ? 1 : size < 128.0 ? 2 : 3;
    ivec2 eighths = ivec2(floor(clamp(place, -16384.0, 131072.0) * 8.0 + 0.5));
    return vec2(((eighths + ((1 << coarser) >> 1)) >> coarser) << coarser) / 8.0;
}

void main() {
    gl_Position = vec4(2.0, 2.0, 2.0, 1.0); // Out of sight.
    centre = vec2(0.0);
    tint = vec3(0.0);
    turn = vec2(1.0, 0.0);
    lookup = vec2(0.0);
    float age = (now.x - birth.x) + (now.y - birth.y);
    float size = inSteps(max(course.z + law.z * age, 0.0) * image.x);
    vec4 light = clamp(color + colorSpeed * age, 0.0, 1.0);
    tint = light.rgb * light.a;
    if (!(age >= 0.0 && age < law.x) || size == 0.0 || max(tint.r, max(tint.g, tint.b)) <= 0.0) {
        return;
    }
    vec2 place = birth.zw + course.xy * age;
    place.y += (law.y * age) * age;
    // Steps are counted from the top left corner.
    float height = picture.y - lift;
    centre = placeInSteps(vec2(place.x * pixelsPerPoint, height - place.y * pixelsPerPoint), size);
    centre.y = picture.y - centre.y;
    if (image.w != 0.0) {
        float angle = floor(fract(law.w * age * 0.15915494) * 64.0 + 0.5) * (6.2831853 / 64.0);
        turn = vec2(cos(angle), sin(angle));
    }
    float support = size * 0.5 + 0.5 + size / image.y;
    float drawn = min(size, image.z);
    float reach = (drawn * 0.5 + 0.5 + drawn / image.y) / (1.0 - 1.0 / levels.w) * (size / drawn);
    float level = log2(drawn / levels.x) * levels.y;
    lookup = vec2(0.5 / reach, (level + 0.5) / levels.z);
    tint *= drawn * drawn / (1.0 + drawn * drawn);
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1) * 2.0 - 1.0;
    vec2 place01 = (centre + corner * support * (abs(turn.x) + abs(turn.y))) / picture;
    gl_Position = vec4(place01 * 2.0 - 1.0, 0.0, 1.0);
}
)";

constexpr const char* sparkFragment = R"(
uniform sampler3D volume;
uniform float gain;

flat in vec2 centre;
flat in vec3 tint;
flat in vec2 turn;
flat in vec2 lookup;

out vec4 light;

void main() {
    vec2 away = gl_FragCoord.xy - centre;
    vec2 inImage = vec2(turn.x * away.x + turn.y * away.y, turn.y * away.x - turn.x * away.y); // downward
    float mask = texture(volume, vec3(inImage * lookup.x + 0.5, lookup.y)).r;
    light = vec4(tint * (mask * gain), 0.0);
}
)";

constexpr const char* resolveVertex = R"(
void main() {
    gl_Position = vec4(vec2(gl_VertexID & 1, gl_VertexID >> 1) * 4.0 - 1.0, 0.0, 1.0);
}
)";

constexpr const char* resolveFragment = R"(
uniform sampler2D lightBuffer;
uniform float gain;
uniform vec3 background;

out vec4 pixel;

void main() {
    vec3 light = texelFetch(lightBuffer, ivec2(gl_FragCoord.xy), 0).rgb;
    pixel = vec4(min(light * gain + background, 1.0), 1.0);
}
)";

/// A step of a compilation: whether it went well, and what the driver says.
using StatusCall = void (QOpenGLExtraFunctions::*)(GLuint, GLenum, GLint*);
using TextCall = void (QOpenGLExtraFunctions::*)(GLuint, GLsizei, GLsizei*, char*);

Result<void> checked(QOpenGLExtraFunctions& gl, unsigned name, GLenum what, StatusCall status, TextCall text) {
    GLint good = 0;
    (gl.*status)(name, what, &good);
    if (good != 0) {
        return {};
    }
    char message[1024] = "";
    (gl.*text)(name, sizeof message, nullptr, message);
    return Error{std::string("the driver cannot compile a shader: ") + message};
}

/// A linked program, or why there is none; what was made on the way is gone.
Result<unsigned> link(QOpenGLExtraFunctions& gl, const char* head, const char* vertex, const char* fragment) {
    const unsigned program = gl.glCreateProgram();
    Result<void> result;
    for (const auto& [kind, body] : {std::pair(GL_VERTEX_SHADER, vertex), std::pair(GL_FRAGMENT_SHADER, fragment)}) {
        const unsigned shader = gl.glCreateShader(static_cast<GLenum>(kind));
        const char* texts[] = {head, body};
        gl.glShaderSource(shader, 2, texts, nullptr);
        gl.glCompileShader(shader);
        if (result) {
            result = checked(gl, shader, GL_COMPILE_STATUS, &QOpenGLExtraFunctions::glGetShaderiv,
                             &QOpenGLExtraFunctions::glGetShaderInfoLog);
        }
        gl.glAttachShader(program, shader);
        gl.glDeleteShader(shader); // It goes with the program.
    }
    gl.glLinkProgram(program);
    if (result) {
        result = checked(gl, program, GL_LINK_STATUS, &QOpenGLExtraFunctions::glGetProgramiv,
                         &QOpenGLExtraFunctions::glGetProgramInfoLog);
    }
    if (!result) {
        gl.glDeleteProgram(program);
        return result.error();
    }
    return program;
}

} // namespace

Result<Shaders> Shaders::compile(QOpenGLExtraFunctions& gl, bool embedded) {
    const char* const head = embedded ? embeddedHead : desktopHead;
    const auto sparks = link(gl, head, sparkVertex, sparkFragment);
    if (!sparks) {
        return sparks.error();
    }
    const auto resolve = link(gl, head, resolveVertex, resolveFragment);
    if (!resolve) {
        gl.glDeleteProgram(sparks.value());
        return resolve.error();
    }
    return Shaders{sparks.value(), resolve.value()};
}

void Shaders::release(QOpenGLExtraFunctions& gl) const {
    gl.glDeleteProgram(sparks);
    gl.glDeleteProgram(resolve);
}

} // namespace starbloom
