// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/StageView.h"
#include "engine/panel/FireworksController.h"
#include "tests/views/SmallSpark.h"
#include "views/WindowMemory.h"

#include <QBackingStore>
#include <QLabel>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>
#include <memory>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// A stage at an odd place in its window, with a clock that the test moves.
struct Theatre {
    static constexpr std::uint64_t seed = 20;

    std::chrono::nanoseconds now = 1h;
    int clockReadings = 0;
    PositionPanel panel;
    StageView stage{seed, [this] { return ++clockReadings, now; }};
    FireworksController controller{&panel, &stage, smallSpark()};
    QWidget window;

    Theatre() {
        window.setPalette(QPalette(QColor(200, 0, 200)));
        window.resize(420, 340);
        stage.setParent(&window);
        stage.setGeometry(13, 7, 301, 303);
        controller.slidersMoved();
    }

    ~Theatre() { stage.setParent(nullptr); }

    void show() {
        window.show();
        ASSERT_TRUE(QTest::qWaitFor([this] { return stage.renderedFrames() > 0; }));
    }

    /// Stops time at a moment of the show and waits until it is seen.
    void freezeAt(std::chrono::nanoseconds showTime) {
        now = 1h + showTime;
        controller.setAnimation(false);
        const double seconds = std::chrono::duration<double>(showTime).count();
        ASSERT_TRUE(QTest::qWaitFor([&] { return std::abs(stage.shownTime() - seconds) < 1.0e-6; }));
    }

    /// The same moment, drawn without a widget.
    QImage reference() {
        Simulation simulation(seed, EmitterPlan::of(controller.mortor()));
        simulation.advanceTo(stage.shownTime());
        QImage image(stage.picture().size(), QImage::Format_RGB32);
        RasterRenderer().render(simulation.sparks(),
                                {stage.shownTime(), stage.devicePixelRatioF(), controller.rootLayer().backgroundColor},
                                {image.bits(), static_cast<std::size_t>(image.bytesPerLine()), image.width(),
                                 image.height(), PixelOrder::Bgra});
        return image;
    }

    /// The pixels of the whole window, as an X11 screen has them, or as they go to another.
    QImage screenshot() {
        if (QGuiApplication::platformName() == "xcb") {
            const auto* memory = dynamic_cast<QImage*>(window.backingStore()->paintDevice());
            EXPECT_EQ(memory != nullptr && WindowMemory::isShared(memory->constBits()),
                      !qEnvironmentVariableIsSet("QT_XCB_NO_MITSHM"));
            return stage.screen()->grabWindow(window.winId()).toImage().convertToFormat(QImage::Format_RGB32);
        }
        const auto* pixels = dynamic_cast<QImage*>(window.backingStore()->paintDevice());
        return pixels != nullptr ? pixels->convertToFormat(QImage::Format_RGB32) : QImage();
    }
};

int brightPixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += qGray(image.pixel(x, y)) > 60 ? 1 : 0;
        }
    }
    return count;
}

/// Lets the event loop run for as long as another stage, with a real clock, needs for some frames; in that time this
/// one must draw nothing, and not even look at the clock.
void expectRest(Theatre& theatre, const char* why) {
    const auto frames = theatre.stage.renderedFrames();
    const int readings = theatre.clockReadings;
    StageView other(1);
    FireworksController controller(nullptr, &other, smallSpark());
    other.resize(20, 20);
    other.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return other.renderedFrames() >= 6; }));
    EXPECT_EQ(theatre.stage.renderedFrames(), frames) << why;
    EXPECT_EQ(theatre.clockReadings, readings) << why;
}

TEST(StageView, ShowsTheMomentAtWhichAFrameWasDue) {
    Theatre theatre;
    theatre.show();
    theatre.now += 3s + 10ms; // Between two frames.
    ASSERT_TRUE(QTest::qWaitFor([&] { return theatre.stage.shownTime() > 2.9; }));
    const double frames = theatre.stage.shownTime() * theatre.stage.screen()->refreshRate();
    EXPECT_NEAR(frames, std::round(frames), 1.0e-5);
    EXPECT_LE(theatre.stage.shownTime(), 3.01);
    EXPECT_GT(brightPixels(theatre.stage.picture()), 20);
    EXPECT_TRUE(theatre.stage.picture() == theatre.reference());
}

TEST(StageView, FrozenItDrawsOnlyWhatHasChanged) {
    Theatre theatre;
    theatre.show();
    theatre.freezeAt(2900ms);
    EXPECT_TRUE(theatre.stage.picture() == theatre.reference());
    EXPECT_GT(brightPixels(theatre.stage.picture()), 20);

    theatre.now += 5s;
    const auto frames = theatre.stage.renderedFrames();
    expectRest(theatre, "frozen");

    theatre.controller.setBackgroundColor({0.0F, 0.0F, 1.0F, 1.0F});
    ASSERT_TRUE(QTest::qWaitFor([&] { return theatre.stage.picture().pixelColor(0, 0) == QColor(0, 0, 255); }));
    expectRest(theatre, "frozen, with another background");
    EXPECT_EQ(theatre.stage.renderedFrames(), frames + 1);
    EXPECT_TRUE(theatre.stage.picture() == theatre.reference());

    theatre.controller.setAnimation(true); // Goes on from where it stood.
    theatre.now += 100ms;
    ASSERT_TRUE(QTest::qWaitFor([&] { return theatre.stage.shownTime() > 2.95; }));
    EXPECT_LE(theatre.stage.shownTime(), 3.0);
}

TEST(StageView, ASpeedThatIsNoForwardMotionStandsStillUntilThereIsOne) {
    for (const float speedPosition : {0.0F, -100.0F, std::numeric_limits<float>::quiet_NaN()}) {
        Theatre theatre;
        theatre.show();
        theatre.panel.setPosition(Parameter::AnimateSpeed, speedPosition);
        theatre.controller.slidersMoved();
        QCoreApplication::processEvents();
        theatre.now += 1s;
        expectRest(theatre, std::to_string(speedPosition).c_str());
        theatre.panel.setPosition(Parameter::AnimateSpeed, 100.0F);
        theatre.controller.slidersMoved();
        theatre.now += 1s;
        EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(theatre.stage.shownTime() - 1.0) < 0.02; })) << speedPosition;
    }
}

TEST(StageView, UnseenItDrawsNothingAndTimeGoesOn) {
    Theatre theatre;
    theatre.show();
    const auto passTwoSeconds = [&](const char* how) {
        theatre.now += 2s;
        theatre.controller.setBackgroundColor({0.0F, 0.5F, 0.0F, 1.0F});
        expectRest(theatre, how);
    };
    const auto expectShownAt = [&](double seconds) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return std::abs(theatre.stage.shownTime() - seconds) < 0.02; })) << seconds;
    };
    theatre.window.hide();
    passTwoSeconds("window hidden");
    theatre.window.show();
    expectShownAt(2.0);
    theatre.stage.hide();
    passTwoSeconds("stage hidden");
    theatre.stage.show();
    expectShownAt(4.0);
    theatre.window.showMinimized();
    passTwoSeconds("minimised");
    theatre.window.showNormal();
    expectShownAt(6.0);
    theatre.now += 24h;
    expectShownAt(24 * 3600.0 + 6.0);
}

TEST(StageView, WhatChangedUnseenWhileFrozenIsSeenAfterwards) {
    Theatre theatre;
    theatre.show();
    theatre.freezeAt(1s);
    theatre.window.showMinimized();
    theatre.controller.setBackgroundColor({1.0F, 0.0F, 0.0F, 1.0F});
    expectRest(theatre, "minimised and frozen");
    theatre.window.showNormal();
    EXPECT_TRUE(QTest::qWaitFor([&] { return theatre.stage.picture().pixelColor(0, 0) == QColor(255, 0, 0); }));
}

TEST(StageView, HasOnePixelForEachPixelOfTheScreen) {
    Theatre theatre;
    theatre.show();
    theatre.freezeAt(2900ms);
    ASSERT_GT(brightPixels(theatre.stage.picture()), 20);
    const double ratio = theatre.stage.devicePixelRatioF();
    const QRect place(QPoint(qRound(13 * ratio), qRound(7 * ratio)),
                      QPoint(qRound(314 * ratio) - 1, qRound(310 * ratio) - 1));
    EXPECT_EQ(theatre.stage.picture().size(), place.size());

    QImage screen = theatre.screenshot();
    screen.setDevicePixelRatio(1.0);
    ASSERT_TRUE(screen.rect().contains(place.adjusted(-1, -1, 1, 1)));
    EXPECT_TRUE(screen.copy(place) == theatre.stage.picture());
    const QRgb around = qRgb(200, 0, 200);
    for (const QPoint& corner : {place.topLeft(), place.bottomRight()}) {
        const QPoint outward = corner == place.topLeft() ? QPoint(-1, -1) : QPoint(1, 1);
        EXPECT_EQ(screen.pixel(corner + QPoint(outward.x(), 0)), around);
        EXPECT_EQ(screen.pixel(corner + QPoint(0, outward.y())), around);
    }
}

TEST(StageView, TheWindowHoldsTheWholePictureAndWhatLiesAboveIt) {
    Theatre theatre;
    QLabel above(&theatre.window);
    above.setGeometry(100, 100, 30, 20);
    above.setStyleSheet("background: #00ff00");
    above.hide();
    theatre.show();
    for (int frame = 1; frame <= 12; ++frame) {
        above.setVisible(frame >= 5 && frame <= 8);
        const auto drawn = theatre.stage.renderedFrames();
        theatre.now += 450ms;
        ASSERT_TRUE(QTest::qWaitFor([&] { return theatre.stage.renderedFrames() > drawn; }));
        QCoreApplication::processEvents();
        const double ratio = theatre.stage.devicePixelRatioF();
        const auto pixels = [ratio](const QRect& points) {
            return QRect(QPoint(qRound(points.left() * ratio), qRound(points.top() * ratio)),
                         QPoint(qRound((points.right() + 1) * ratio) - 1, qRound((points.bottom() + 1) * ratio) - 1));
        };
        const QRect stage = pixels(theatre.stage.geometry());
        QImage expected = theatre.reference();
        ASSERT_EQ(expected.size(), stage.size());
        if (above.isVisible()) {
            QPainter(&expected).fillRect(pixels(above.geometry()).translated(-stage.topLeft()), QColor(0, 255, 0));
        }
        // What comes or goes above is painted a little later.
        EXPECT_TRUE(QTest::qWaitFor([&] {
            QImage screen = theatre.screenshot();
            screen.setDevicePixelRatio(1.0);
            return screen.copy(stage) == expected;
        })) << frame;
    }
}

TEST(StageView, ResizingLeavesTheLaunchPointWhereItIs) {
    Theatre theatre;
    theatre.show();
    const Point before = theatre.controller.mortor().emitterPosition;
    EXPECT_EQ(before, (Point{150.5, 0.0}));
    theatre.stage.resize(361, 310);
    theatre.controller.setBackgroundColor({0.1F, 0.1F, 0.1F, 1.0F});
    theatre.freezeAt(2900ms);
    EXPECT_EQ(theatre.controller.mortor().emitterPosition, before);
    EXPECT_TRUE(theatre.stage.picture() == theatre.reference());
    const QSize small = theatre.stage.picture().size();
    const QImage picture = theatre.stage.picture().copy();

    theatre.stage.resize(401, 310); // While frozen: more of the same moment.
    ASSERT_TRUE(QTest::qWaitFor([&] { return theatre.stage.picture().width() > small.width(); }));
    EXPECT_TRUE(theatre.stage.picture().copy(QRect({}, small)) == picture);

    theatre.controller.setAnimation(true);
    theatre.controller.slidersMoved();
    EXPECT_EQ(theatre.controller.mortor().emitterPosition, (Point{200.5, 0.0}));
}

} // namespace

} // namespace starbloom
