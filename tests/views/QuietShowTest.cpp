// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/QuietShow.h"
#include "engine/panel/FireworksController.h"
#include "engine/time/Show.h"
#include "tests/views/SmallSpark.h"
#include "views/StageView.h"

#include <QDeadlineTimer>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <thread>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// A stage in a window that plays by the real clock.
struct QuietTheatre {
    static constexpr std::uint64_t seed = 20;

    PositionPanel panel;
    std::unique_ptr<QWidget> ownWindow = std::make_unique<QWidget>();
    QWidget& window = *ownWindow;
    StageView& stage = *new StageView(seed, StageView::steadyClock, &window);
    FireworksController controller{&panel, &stage, smallSpark()};

    QuietTheatre() {
        panel.setPosition(Parameter::RocketBirth, 8.0F);
        window.resize(420, 340);
        stage.setGeometry(13, 7, 301, 303);
        controller.slidersMoved();
        stage.restart(); // With these numbers from its first moment on.
        window.show();
    }

    bool becomesQuiet() {
        return QTest::qWaitFor([this] { return stage.playsQuietly(); }, 20'000);
    }

    /// Waits without the event loop.
    bool goesOnByItself() const {
        const auto frames = stage.renderedFrames();
        for (const QDeadlineTimer deadline(10s); stage.renderedFrames() < frames + 10;) {
            if (deadline.hasExpired()) {
                return false;
            }
            std::this_thread::yield();
        }
        return true;
    }

    QImage screenOf(const QWidget& widget) const {
        const double ratio = widget.devicePixelRatioF();
        const QPoint place = widget.mapTo(&window, QPoint());
        const QRect pixels(QPoint(qRound(place.x() * ratio), qRound(place.y() * ratio)),
                           QPoint(qRound((place.x() + widget.width()) * ratio) - 1,
                                  qRound((place.y() + widget.height()) * ratio) - 1));
        QImage screen = stage.screen()->grabWindow(window.winId()).toImage().convertToFormat(QImage::Format_RGB32);
        screen.setDevicePixelRatio(1.0);
        return screen.copy(pixels);
    }

    /// Whether other frames follow without it ever being quiet.
    bool isNotQuietForFrames(int frames) {
        const auto before = stage.renderedFrames();
        bool quiet = false;
        return QTest::qWaitFor(
                   [&] {
                       quiet = quiet || stage.playsQuietly();
                       return stage.renderedFrames() >= before + frames;
                   },
                   20'000) &&
               !quiet;
    }

    /// The moment shown last, drawn without a widget.
    QImage reference() { return reference(stage.shownTime(), stage.picture().size(), stage.devicePixelRatioF()); }

    QImage reference(double moment, const QSize& size, double zoom) {
        ShowPlayer player({seed, {{0.0, EmitterPlan::of(controller.mortor())}}});
        QImage image(size, QImage::Format_RGB32);
        RasterRenderer().render(player.at(moment).sparks(), {moment, zoom, controller.rootLayer().backgroundColor},
                                {image.bits(), static_cast<std::size_t>(image.bytesPerLine()), image.width(),
                                 image.height(), PixelOrder::Bgra});
        return image;
    }
};

bool sharesMemoryWithAServer() {
    return QGuiApplication::platformName() == "xcb" && !qEnvironmentVariableIsSet("QT_XCB_NO_MITSHM");
}

TEST(QuietShow, PlaysWhereAServerSharesMemoryUntilAnythingHappens) {
    QuietTheatre theatre;
    if (!sharesMemoryWithAServer()) {
        EXPECT_TRUE(theatre.isNotQuietForFrames(90));
        return;
    }
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(theatre.becomesQuiet()) << round;
        ASSERT_TRUE(theatre.goesOnByItself()) << round;
        QEvent event(QEvent::User);
        QCoreApplication::sendEvent(&theatre.window, &event); // To anyone.
        EXPECT_FALSE(theatre.stage.playsQuietly());
        const QImage expected = theatre.reference();
        EXPECT_TRUE(theatre.screenOf(theatre.stage) == expected) << round;
        EXPECT_TRUE(theatre.stage.picture() == expected) << round; // Which is in the window's memory.
    }
}

TEST(QuietShow, WhatIsDoneToTheStageFindsThePresentMoment) {
    ASSERT_TRUE(sharesMemoryWithAServer());
    QuietTheatre theatre;
    ASSERT_TRUE(theatre.becomesQuiet());
    const double shown = theatre.stage.shownTime();
    const StageView::Capture captured = theatre.stage.capture();
    EXPECT_FALSE(theatre.stage.playsQuietly());
    EXPECT_GE(captured.moment, shown);
    const QImage expected = theatre.reference(captured.moment, theatre.stage.QWidget::size(), 1.0).rgbSwapped();
    EXPECT_TRUE(std::equal(captured.image.bytes().begin(), captured.image.bytes().end(), expected.constBits()));

    ASSERT_TRUE(theatre.becomesQuiet());
    theatre.controller.setAnimation(false);
    EXPECT_FALSE(theatre.stage.playsQuietly());
    const auto frames = theatre.stage.renderedFrames();
    EXPECT_FALSE(QTest::qWaitFor([&] { return theatre.stage.renderedFrames() > frames + 1; }, 200));

    theatre.controller.setAnimation(true);
    ASSERT_TRUE(theatre.becomesQuiet());
    theatre.stage.beginRecording();
    EXPECT_FALSE(theatre.stage.playsQuietly());
    EXPECT_TRUE(theatre.isNotQuietForFrames(90));
    theatre.stage.setGeometry(60, 50, 200, 150); // What was presented before does not count.
    theatre.stage.endRecording();
    EXPECT_TRUE(theatre.isNotQuietForFrames(20));

    ASSERT_TRUE(theatre.becomesQuiet());
    const double last = theatre.stage.shownTime();
    theatre.stage.restart();
    ASSERT_TRUE(theatre.becomesQuiet());
    EXPECT_LT(theatre.stage.shownTime(), last);

    theatre.window.hide();
    EXPECT_FALSE(theatre.stage.playsQuietly());
    const auto unseen = theatre.stage.renderedFrames();
    EXPECT_FALSE(QTest::qWaitFor([&] { return theatre.stage.renderedFrames() > unseen; }, 200));
}

TEST(QuietShow, LeavesAloneWhatIsNotItsOwn) {
    ASSERT_TRUE(sharesMemoryWithAServer());
    QuietTheatre theatre;
    ASSERT_TRUE(theatre.becomesQuiet());
    QLabel& above = *new QLabel(&theatre.window);
    above.setGeometry(100, 100, 30, 20);
    above.setStyleSheet("background: #00ff00");
    above.show();
    EXPECT_TRUE(theatre.isNotQuietForFrames(90));
    QImage green = theatre.screenOf(above);
    green.fill(QColor(0, 255, 0));
    EXPECT_TRUE(theatre.screenOf(above) == green);
    above.hide();

    ASSERT_TRUE(theatre.becomesQuiet());
    theatre.window.resize(500, 400);
    theatre.stage.setGeometry(40, 20, 400, 350);
    ASSERT_TRUE(theatre.becomesQuiet());
    ASSERT_TRUE(theatre.goesOnByItself());
    QEvent event(QEvent::User);
    QCoreApplication::sendEvent(&theatre.stage, &event);
    EXPECT_TRUE(theatre.screenOf(theatre.stage) == theatre.reference());

    ASSERT_TRUE(theatre.becomesQuiet());
    theatre.ownWindow.reset(); // In the middle of it.
}

} // namespace

} // namespace starbloom
