// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/panel/FireworksController.h"
#include "engine/raster/RasterRenderer.h"
#include "tests/engine/Scenes.h"
#include "views/StageView.h"
#include "views/opengl/OpenGlStage.h"
#include "views/opengl/WindowSurface.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// A stage in a window on a real screen, at 2.9 s of its show, with a clock that the test moves.
class StageSurface : public ::testing::Test {
protected:
    StageSurface() {
        window.setPalette(QPalette(QColor(200, 0, 200)));
        window.setGeometry(40, 30, 420, 340);
        stage.setParent(&window);
        stage.setGeometry(13, 7, 301, 303);
        panel.setPosition(Parameter::RocketBirth, 20.0F);
        controller.slidersMoved();
    }

    ~StageSurface() override { stage.setParent(nullptr); }

    void SetUp() override {
        if (QGuiApplication::platformName() != QStringLiteral("xcb")) {
            GTEST_SKIP() << "needs a screen";
        }
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        letTimePass(2900ms);
    }

    void letTimePass(std::chrono::nanoseconds time) {
        now += time;
        const double moment = std::chrono::duration<double>(now - 1h).count();
        ASSERT_TRUE(QTest::qWaitFor([&] { return stage.shownTime() > moment - 0.02; }));
    }

    void changeOver() {
        auto surface = std::make_unique<WindowSurface>([this] { stage.update(); });
        if (!surface->open()) {
            GTEST_SKIP() << "no context can be had here";
        }
        stage.setScreenRenderer(std::make_unique<OpenGlStage>(std::move(surface), std::vector<PreparedImage>{}));
        expectOnSurface(true);
    }

    void expectRest(const char* when) {
        const auto drawn = stage.renderedFrames();
        QTest::qWait(100);
        EXPECT_EQ(stage.renderedFrames(), drawn) << when;
    }

    /// The surface is a window within the window.
    bool hasSurface() {
        const auto* const child = window.windowHandle()->findChild<QWindow*>();
        return child != nullptr && child->isExposed();
    }

    void expectOnSurface(bool on) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return hasSurface() == on; }));
    }

    /// The pixels that the stage covers.
    QRect place() const {
        const double ratio = stage.devicePixelRatioF();
        const QRect rect = stage.geometry();
        const auto pixel = [ratio](int point) { return qRound(point * ratio); };
        return {QPoint(pixel(rect.left()), pixel(rect.top())),
                QPoint(pixel(rect.left() + rect.width()) - 1, pixel(rect.top() + rect.height()) - 1)};
    }

    QImage screen() {
        QImage image = window.screen()->grabWindow(window.winId()).toImage();
        image.setDevicePixelRatio(1.0);
        return image.convertToFormat(QImage::Format_RGB32).copy(place());
    }

    /// The same moment, drawn without a widget.
    QImage reference() {
        Simulation simulation(20, EmitterPlan::of(controller.mortor()));
        simulation.advanceTo(stage.shownTime());
        QImage image(place().size(), QImage::Format_RGB32);
        RasterRenderer().render(simulation.sparks(),
                                {stage.shownTime(), stage.devicePixelRatioF(), controller.rootLayer().backgroundColor},
                                {image.bits(), static_cast<std::size_t>(image.bytesPerLine()), image.width(),
                                 image.height(), PixelOrder::Bgra});
        return image;
    }

    /// Without the outermost pixels: with fractional scales, where a window can only lie at whole points, they may
    /// belong to what is below.
    bool screenShowsTheMoment() {
        const QImage seen = screen();
        const QImage expected = reference();
        int light = 0;
        for (int y = 1; y < expected.height() - 1; ++y) {
            for (int x = 1; x < expected.width() - 1; ++x) {
                const QColor a(seen.pixel(x, y));
                const QColor b(expected.pixel(x, y));
                if (std::abs(a.red() - b.red()) > 12 || std::abs(a.green() - b.green()) > 12 ||
                    std::abs(a.blue() - b.blue()) > 12) {
                    return false;
                }
                light += qGray(b.rgb());
            }
        }
        return light > 5'000;
    }

    void expectMomentOnScreen(const char* when) {
        EXPECT_TRUE(QTest::qWaitFor([this] { return screenShowsTheMoment(); })) << when;
    }

    std::chrono::nanoseconds now = 1h;
    PositionPanel panel;
    StageView stage{20, [this] { return now; }};
    FireworksController controller{&panel, &stage, softSpark()};
    QWidget window;
};

TEST_F(StageSurface, ShowsWhatTheCpuShows) {
    expectMomentOnScreen("before");
    const double moment = stage.shownTime();
    changeOver();
    expectMomentOnScreen("after the change-over");
    EXPECT_EQ(stage.shownTime(), moment);
    letTimePass(500ms);
    expectMomentOnScreen("later");

    controller.setAnimation(false);
    controller.setBackgroundColor({0.2F, 0.1F, 0.4F, 1.0F});
    expectMomentOnScreen("frozen, over another background");
    expectRest("frozen");
    window.resize(480, 340);
    stage.setGeometry(40, 20, 371, 310);
    expectMomentOnScreen("elsewhere, in another size, still frozen");
    stage.move(20, 10);
    expectMomentOnScreen("moved");
    expectOnSurface(true);
    controller.setAnimation(true);

    window.hide();
    now += 1s;
    expectRest("hidden");
    window.show();
    expectMomentOnScreen("shown again");
    expectOnSurface(true);

    stage.setScreenRenderer(nullptr);
    expectOnSurface(false);
    expectMomentOnScreen("back on the CPU");
}

TEST_F(StageSurface, GivesWayToWhatLiesOverTheStage) {
    changeOver();
    QWidget cover(&window);
    cover.setAutoFillBackground(true);
    cover.setGeometry(100, 100, 50, 50);
    cover.show();
    letTimePass(100ms);
    expectOnSurface(false);
    cover.hide();
    letTimePass(100ms);
    expectOnSurface(true);
    expectMomentOnScreen("uncovered");
}

} // namespace

} // namespace starbloom
