// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/OpenGlModule.h"

#include "views/opengl/DriverName.h"
#include "views/opengl/OpenGlStage.h"
#include "views/opengl/WindowSurface.h"

#include <utility>
#include <vector>

namespace starbloom {

namespace {

class Module final : public OpenGlModule {
public:
    Result<std::string> prepare(const std::string& platform) override { return driverName(platform); }

    void prepareImage(std::shared_ptr<const SparkImage> image) override {
        m_prepared.push_back(PreparedImage::of(std::move(image)));
    }

    Result<Opened> open(std::function<void()> redraw) override {
        auto surface = std::make_unique<WindowSurface>(std::move(redraw));
        auto name = surface->open();
        if (!name) {
            return name.error();
        }
        return Opened{std::make_unique<OpenGlStage>(std::move(surface), m_prepared), std::move(name).value()};
    }

private:
    std::vector<PreparedImage> m_prepared;
};

} // namespace

} // namespace starbloom

/// The door of the module. What it is built from has a log of its own, which is led into the program's.
extern "C" [[gnu::visibility("default")]] starbloom::OpenGlModule* starbloomOpenGl(starbloom::LogSink sink) {
    static starbloom::Module module;
    starbloom::setLogSink(std::move(sink));
    return &module;
}
