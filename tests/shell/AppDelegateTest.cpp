// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"
#include "tests/support/HandDrivenCalls.h"
#include "tests/support/TemporaryFolder.h"
#include "views/ParameterSlider.h"

#include <QAction>
#include <QCheckBox>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// The whole application, launched, with a clock that the test moves.
class AppDelegateTest : public ::testing::Test {
protected:
    void SetUp() override {
        app.launch();
        ASSERT_TRUE(QTest::qWaitFor([this] { return stage().renderedFrames() > 0; }));
    }

    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = app.window().findChild<Widget*>(QString::fromUtf8(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    StageView& stage() { return find<StageView>("stage"); }

    ParameterSlider& slider(Parameter parameter) { return find<ParameterSlider>(row(parameter).name.data()); }

    double number(const char* keyPath) { return app.controller().mortor().value(keyPath).value_or(-1.0); }

    double rocketRate() { return number("emitterCells.rocket.birthRate"); }

    float speed() { return app.controller().mortor().speed; }

    std::chrono::nanoseconds now = 1h;
    TemporaryFolder home;
    HandDrivenCalls calls;
    AppDelegate app{AppFolder(home.path()), calls, 20, [this] { return now; }};
};

TEST_F(AppDelegateTest, StartsWithThePositionsOfTheSlidersOnAStageOfTheDefaultSize) {
    EXPECT_EQ(stage().size(), (Size{640.0, 480.0}));
    EXPECT_EQ(app.controller().mortor().emitterPosition, (Point{320.0, 0.0}));
    // Only the first use of the sliders gives the rockets of a fresh tree different speeds.
    EXPECT_EQ(number("emitterCells.rocket.velocityRange"), 100.0);
    // The spark's picture was found: within some seconds there is light.
    int brightest = 0;
    for (int second = 1; second <= 10; ++second) {
        now = 1h + second * 1s;
        ASSERT_TRUE(QTest::qWaitFor([&] { return stage().shownTime() > second - 0.1; }));
        const QImage picture = stage().picture().scaled(80, 60);
        for (int i = 0; i < 80 * 60; ++i) {
            brightest = std::max(brightest, qGray(picture.pixel(i % 80, i / 80)));
        }
    }
    EXPECT_GT(brightest, 150);
}

TEST_F(AppDelegateTest, SlidersChangeTheShowAndTheResetButtonBringsItBack) {
    QTest::keyClick(&slider(Parameter::RocketBirth), Qt::Key_Right);
    EXPECT_FLOAT_EQ(static_cast<float>(rocketRate()), 0.6F);
    QTest::keyClick(&slider(Parameter::AnimateSpeed), Qt::Key_End);
    EXPECT_EQ(speed(), 2.0F);
    app.window().resize(app.window().QWidget::size() + QSize(100, 0));
    EXPECT_EQ(app.controller().mortor().emitterPosition, (Point{320.0, 0.0}));

    QTest::mouseClick(&find<QPushButton>("resetButton"), Qt::LeftButton);
    EXPECT_FLOAT_EQ(static_cast<float>(rocketRate()), 0.5F);
    EXPECT_EQ(speed(), 1.0F);
    EXPECT_EQ(slider(Parameter::RocketBirth).position(), 5.0F);
    EXPECT_EQ(app.controller().mortor().emitterPosition, (Point{370.0, 0.0}));

    QTest::keyClick(&slider(Parameter::ExplodeGravity), Qt::Key_Home);
    find<QAction>("reset").trigger();
    EXPECT_EQ(number("emitterCells.rocket.emitterCells.firework.yAcceleration"), -80.0);
}

TEST_F(AppDelegateTest, SwitchedOffItStandsStillAndIgnoresTheSliders) {
    auto& box = find<QCheckBox>("animationSwitch");
    QTest::keyClick(&app.window(), Qt::Key_F5);
    EXPECT_TRUE(app.controller().off());
    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(speed(), 0.0F);
    QTest::keyClick(&slider(Parameter::RocketBirth), Qt::Key_End);
    QTest::keyClick(&slider(Parameter::AnimateSpeed), Qt::Key_Left);
    find<QAction>("reset").trigger();
    EXPECT_FLOAT_EQ(static_cast<float>(rocketRate()), 0.5F);
    EXPECT_EQ(slider(Parameter::RocketBirth).position(), 40.0F);

    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_FALSE(app.controller().off());
    EXPECT_EQ(speed(), 0.9F);
}

TEST_F(AppDelegateTest, FullScreenShowsTheStageAloneAndKeepsTheKeys) {
    auto& panel = *app.window().findChild<SliderPanel*>();
    QTest::keyClick(&app.window(), Qt::Key_F11);
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.window().isFullScreen(); }));
    EXPECT_FALSE(panel.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage().rect().size() == app.window().rect().size(); }));
    QTest::keyClick(&app.window(), Qt::Key_F5);
    EXPECT_TRUE(app.controller().off());

    QTest::keyClick(&app.window(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !app.window().isFullScreen(); }));
    EXPECT_TRUE(panel.isVisible());
    EXPECT_FALSE(find<QAction>("fullScreen").isChecked());
}

TEST_F(AppDelegateTest, QuitClosesTheWindow) {
    QTest::keyClick(&app.window(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !app.window().isVisible(); }));
}

} // namespace

} // namespace starbloom
