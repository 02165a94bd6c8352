// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ScreenRenderer.h"

#include "base/Log.h"
#include "views/StageView.h"
#include "views/opengl/OpenGlModule.h"

#include <QGuiApplication>

#include <utility>

namespace starbloom {

namespace {

constexpr const char* integrationVariable = "QT_XCB_GL_INTEGRATION";

void tellCpu(const std::string& reason) {
    log(LogLevel::Info, "views", "the stage is drawn by the CPU: " + reason);
}

} // namespace

void ScreenRenderer::prepareEnvironment() {
    if (!qEnvironmentVariableIsSet(integrationVariable)) {
        qputenv(integrationVariable, "xcb_egl");
    }
}

void ScreenRenderer::choose(std::shared_ptr<const SparkImage> image) {
    bool known = true;
    const QByteArray value = qgetenv(rendererVariable);
    m_choice = rendererChoice(value, &known);
    if (!known) {
        log(LogLevel::Warning, "views",
            std::string(rendererVariable) + " is none of raster, opengl and auto: " + value.toStdString());
    }
    if (m_choice == RendererChoice::Raster) {
        tellCpu(std::string(rendererVariable) + " says so");
        return;
    }
    if (m_choice == RendererChoice::Automatic && !hasGraphicsDevice()) {
        tellCpu("there is no graphics processor");
        return;
    }
    const std::string platform = QGuiApplication::platformName().toStdString();
    m_search = std::jthread([this, platform, image = std::move(image)] {
        auto driver = findDriver(platform, image);
        QMetaObject::invokeMethod(
            this, [this, driver = std::move(driver)] { changeOver(driver); }, Qt::QueuedConnection);
    });
}

Result<std::string> ScreenRenderer::findDriver(const std::string& platform, std::shared_ptr<const SparkImage> image) {
    if (auto loaded = m_module.load(); !loaded) {
        return loaded.error();
    }
    OpenGlModule& module = *m_module.door<OpenGlEntry>()(&log);
    auto driver = module.prepare(platform);
    if (isWanted(driver)) {
        module.prepareImage(std::move(image));
    }
    return driver;
}

bool ScreenRenderer::isWanted(const Result<std::string>& driver) {
    if (m_choice == RendererChoice::OpenGl) {
        return true;
    }
    // A name that could not be asked for beforehand is judged when there is a context.
    return driver && (driver.value().empty() || !isSoftwareRenderer(driver.value()));
}

void ScreenRenderer::changeOver(const Result<std::string>& driver) {
    if (!isWanted(driver)) {
        tellCpu(driver ? "OpenGL is " + driver.value() : driver.error().message);
        return;
    }
    if (auto loaded = m_module.load(); !loaded) {
        tellCpu(loaded.error().message);
        return;
    }
    auto opened = m_module.door<OpenGlEntry>()(&log)->open([&stage = m_stage] { stage.update(); });
    if (!opened) {
        tellCpu(opened.error().message);
        return;
    }
    const std::string& name = opened.value().name;
    if (m_choice == RendererChoice::Automatic && isSoftwareRenderer(name)) {
        tellCpu("OpenGL is " + name);
        return;
    }
    const char* const why = m_choice == RendererChoice::OpenGl ? ", as STARBLOOM_RENDERER says" : "";
    log(LogLevel::Info, "views", "the stage is drawn by OpenGL: " + name + why);
    m_stage.setScreenRenderer(std::move(opened.value().renderer));
}

} // namespace starbloom
