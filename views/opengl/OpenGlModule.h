// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Log.h"
#include "base/Result.h"
#include "engine/model/SparkImage.h"
#include "views/StageRenderer.h"

#include <functional>
#include <memory>
#include <string>

namespace starbloom {

/// All that needs OpenGL, behind one door, as it is loaded when the first frame is on the screen: a graphics driver
/// takes longer to load than the whole launch.
class OpenGlModule {
public:
    virtual ~OpenGlModule() = default;

    /// Loads the driver by asking for the name of what draws, on a connection to the screen of its own, and works out
    /// what drawing an image needs. Takes up to some tenths of a second, so it is best done on a worker; one call at a
    /// time. The platform is the toolkit's name for the window system. An empty name: nobody can tell beforehand.
    virtual Result<std::string> prepare(const std::string& platform) = 0;

    /// Works out what drawing an image needs, so that the first frame does not have to; like prepare().
    virtual void prepareImage(std::shared_ptr<const SparkImage> image) = 0;

    struct Opened {
        std::unique_ptr<StageRenderer> renderer;
        std::string name; ///< Of what draws.
    };

    /// A renderer with a context. The call comes when its surface has to be drawn again. GUI thread, after the others.
    virtual Result<Opened> open(std::function<void()> redraw) = 0;
};

/// How the module hands itself out; its log goes to the sink. Its symbol is starbloomOpenGl.
using OpenGlEntry = OpenGlModule* (*)(LogSink sink);

} // namespace starbloom
