// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "engine/model/SparkImage.h"
#include "shell/LoadedModule.h"
#include "views/RendererChoice.h"

#include <QObject>

#include <memory>
#include <string>
#include <thread>

namespace starbloom {

class StageView;

/// Finds out what draws the stage best on this machine, and gives it to the stage.
///
/// The first frames are always the CPU's. Once they are on the screen, choose() looks for a graphics processor: first
/// for its device, which costs nothing, then on a worker for its driver, whose libraries take longer to load than the
/// whole application. Only a driver that is none of the programs that do its work on the CPU makes the stage change
/// over. The variable STARBLOOM_RENDERER decides instead of all that: raster, opengl or auto. One line in the log says
/// what draws, and why.
///
/// The stage must outlive it. GUI thread.
class ScreenRenderer final : public QObject {
public:
    explicit ScreenRenderer(StageView& stage)
        : m_stage(stage) {}

    /// Before the application object and any thread: has the toolkit make its contexts in the way in which they were
    /// looked for, so that they come quickly. Where that way does not work it takes the other one by itself.
    static void prepareEnvironment();

    /// To be called once, when the stage has appeared. The image is the one that the stage will draw with.
    void choose(std::shared_ptr<const SparkImage> image);

private:
    Result<std::string> findDriver(const std::string& platform, std::shared_ptr<const SparkImage> image);
    void changeOver(const Result<std::string>& driver);
    bool isWanted(const Result<std::string>& driver);

    StageView& m_stage;
    RendererChoice m_choice = RendererChoice::Automatic;
    LoadedModule m_module{"starbloom-opengl", "starbloomOpenGl"};
    std::jthread m_search;
};

} // namespace starbloom
