// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

class QOpenGLExtraFunctions;

namespace starbloom {

/// The two programs of a frame, compiled for the current context, OpenGL 3.3 or OpenGL ES 3.0. They are the same texts
/// but for their first lines.
struct Shaders {
    unsigned sparks = 0;  ///< One instance for each spark, four vertices each, into the light.
    unsigned resolve = 0; ///< Three vertices that cover all; light and background become pixels.

    static Result<Shaders> compile(QOpenGLExtraFunctions& gl, bool embedded);

    void release(QOpenGLExtraFunctions& gl) const;
};

} // namespace starbloom
