// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ScreenRenderer.h"
#include "engine/panel/FireworksController.h"
#include "shell/Spark.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "views/StageView.h"

#include <QGuiApplication>
#include <QTest>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace starbloom {

namespace {

TEST(RendererChoice, KnowsWordsDriversAndDevices) {
    bool known = false;
    EXPECT_EQ(rendererChoice(" OpenGL", &known), RendererChoice::OpenGl);
    EXPECT_EQ(rendererChoice("raster", &known), RendererChoice::Raster);
    EXPECT_TRUE(known);
    EXPECT_EQ(rendererChoice("", &known), RendererChoice::Automatic);
    EXPECT_TRUE(known);
    EXPECT_EQ(rendererChoice("vulkan", &known), RendererChoice::Automatic);
    EXPECT_FALSE(known);

    for (const char* name : {"llvmpipe (LLVM 15.0.6, 256 bits)", "softpipe", "Google SwiftShader", "GDI Generic", "",
                             "Software Rasterizer", "Apple Software Renderer"}) {
        EXPECT_TRUE(isSoftwareRenderer(name)) << name;
    }
    for (const char* name : {"AMD Radeon RX 6600 (radeonsi, navi23, LLVM 15.0.6)", "Mesa Intel(R) UHD Graphics 620",
                             "NVIDIA GeForce GTX 1650/PCIe/SSE2", "V3D 4.2", "Mali-G52"}) {
        EXPECT_FALSE(isSoftwareRenderer(name)) << name;
    }

    const TemporaryFolder devices;
    EXPECT_FALSE(hasGraphicsDevice(devices.path() / "missing"));
    std::filesystem::create_directory(devices / "dri");
    std::ofstream(devices / "dri" / "card0"); // A screen alone, as servers have one.
    EXPECT_FALSE(hasGraphicsDevice(devices.path()));
    std::ofstream(devices / "dri" / "renderD128");
    EXPECT_TRUE(hasGraphicsDevice(devices.path()));
}

/// A show in a window, drawn by what the environment asks for.
struct Screening {
    explicit Screening(const char* wanted) {
        qputenv(rendererVariable, wanted);
        stage.resize(480, 320);
        stage.show();
        EXPECT_TRUE(QTest::qWaitFor([this] { return stage.renderedFrames() > 0; }));
        renderer.choose(spark());
        EXPECT_TRUE(QTest::qWaitFor([this] { return log.text().find("the stage is drawn by") != std::string::npos; }));
    }

    ~Screening() { qunsetenv(rendererVariable); }

    LogCapture log;
    StageView stage{1};
    FireworksController controller{nullptr, &stage, spark()};
    ScreenRenderer renderer{stage};
};

TEST(ScreenRenderer, IsWhatTheEnvironmentSaysOrTheMachineHas) {
    const Screening onCpu("raster");
    EXPECT_NE(onCpu.log.text().find("by the CPU: STARBLOOM_RENDERER"), std::string::npos) << onCpu.log.text();
    EXPECT_FALSE(onCpu.stage.hasScreenRenderer());
    if (!hasGraphicsDevice()) {
        const Screening automatic("auto");
        EXPECT_NE(automatic.log.text().find("by the CPU: there is no"), std::string::npos) << automatic.log.text();
        EXPECT_FALSE(automatic.stage.hasScreenRenderer());
    }
}

TEST(ScreenRenderer, ChangesOverWhileTheShowGoesOnWhereThereIsOpenGl) {
    Screening screening("opengl");
    // Without a screen there is no context, and the CPU goes on.
    const bool onScreen = QGuiApplication::platformName() == QStringLiteral("xcb");
    const char* const drawnBy = onScreen ? "drawn by OpenGL: " : "drawn by the CPU: there is neither";
    EXPECT_NE(screening.log.text().find(drawnBy), std::string::npos) << screening.log.text();
    EXPECT_EQ(screening.stage.hasScreenRenderer(), onScreen);
    const auto frames = screening.stage.renderedFrames();
    EXPECT_TRUE(QTest::qWaitFor([&] { return screening.stage.renderedFrames() > frames + 20; }));
    EXPECT_EQ(screening.stage.hasScreenRenderer(), onScreen) << screening.log.text();
}

TEST(ScreenRenderer, MayGoWhileItSearches) {
    qputenv(rendererVariable, "opengl");
    StageView stage(1);
    { ScreenRenderer(stage).choose(spark()); }
    QCoreApplication::processEvents();
    EXPECT_FALSE(stage.hasScreenRenderer());
    qunsetenv(rendererVariable);
}

} // namespace

} // namespace starbloom
