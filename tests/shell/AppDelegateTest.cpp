// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"
#include "shell/Menus.h"
#include "shell/ModalPlace.h"
#include "tests/shell/PreparedSurroundings.h"
#include "tests/support/TemporaryFolder.h"
#include "views/ParameterSlider.h"
#include "views/PathControl.h"
#include "views/SegmentedControl.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>
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
        skipIntroduction(home);
        app.launch();
        app.window().findChild<SliderPanel*>()->fill();
        ASSERT_TRUE(QTest::qWaitFor([this] { return stage().renderedFrames() > 0; }));
    }

    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = app.window().findChild<Widget*>(QString::fromUtf8(name)); // The sidebar is a child, too.
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
    PreparedSurroundings around{home};
    AppDelegate app{AppFolder(home.path()), around.with([this] { return now; })};
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
    app.sidebar().openSettings();
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
    find<QAction>("emitterReset").trigger();
    EXPECT_EQ(number("emitterCells.rocket.emitterCells.firework.yAcceleration"), -80.0);
}

TEST_F(AppDelegateTest, SwitchedOffItStandsStillAndIgnoresTheSliders) {
    auto& onoff = find<SegmentedControl>("onoffControlT1");
    QTest::keyClick(&app.window(), Qt::Key_F5);
    EXPECT_TRUE(app.controller().off());
    EXPECT_EQ(onoff.selectedSegment(), 1);
    EXPECT_EQ(speed(), 0.0F);
    QTest::keyClick(&slider(Parameter::RocketBirth), Qt::Key_End);
    QTest::keyClick(&slider(Parameter::AnimateSpeed), Qt::Key_Left);
    find<QAction>("emitterReset").trigger();
    EXPECT_FLOAT_EQ(static_cast<float>(rocketRate()), 0.5F);
    EXPECT_EQ(slider(Parameter::RocketBirth).position(), 40.0F);

    QTest::mouseClick(onoff.childAt(10, 16), Qt::LeftButton);
    EXPECT_FALSE(app.controller().off());
    EXPECT_TRUE(find<QAction>("emitterAnimation").isChecked());
    EXPECT_EQ(speed(), 0.9F);
}

TEST_F(AppDelegateTest, FullScreenShowsTheStageAloneAndKeepsTheKeys) {
    auto& chrome = find<QWidget>("chrome");
    QTest::keyClick(&app.window(), Qt::Key_F11);
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.window().isFullScreen(); }));
    EXPECT_FALSE(chrome.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage().rect().size() == app.window().rect().size(); }));
    QTest::keyClick(&app.window(), Qt::Key_F5);
    EXPECT_TRUE(app.controller().off());

    QTest::keyClick(&app.window(), Qt::Key_Escape);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !app.window().isFullScreen(); }));
    EXPECT_TRUE(chrome.isVisible());
    EXPECT_FALSE(find<QAction>("windowFullscreen").isChecked());
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage().rect().size() == QSize(640, 480); }));
}

TEST_F(AppDelegateTest, ASizeIsTakenAtEachKeyThatLeavesBothFieldsValid) {
    auto& width = find<QLineEdit>("widthFieldT1");
    auto& height = find<QLineEdit>("heightFieldT1");
    const auto type = [&](QLineEdit& field, const char* text) {
        field.selectAll();
        QApplication::clipboard()->setText(QString::fromUtf8(text));
        *text == 0 ? field.del() : field.paste();
        return field.palette().color(QPalette::Text) == QApplication::palette().color(QPalette::Text);
    };
    EXPECT_EQ(width.text(), "640");
    EXPECT_EQ(height.text(), "480");
    const QPoint top = app.window().geometry().topLeft();
    EXPECT_TRUE(type(width, "480"));
    EXPECT_TRUE(type(height, "320"));
    EXPECT_EQ(app.window().geometry(), QRect(top, QSize(490, 429)));
    EXPECT_EQ(stage().rect().size(), QSize(480, 320));
    EXPECT_EQ(stage().mapTo(&app.window(), QPoint(0, 320)), QPoint(5, 429 - 27));
    for (const char* wrong : {"479", "0640", "640.0", "+640", " 640", "0", ""}) {
        EXPECT_FALSE(type(width, wrong)) << wrong;
        EXPECT_TRUE(type(height, "400"));
        EXPECT_EQ(app.window().geometry().size(), QSize(490, 429)) << wrong;
    }
    EXPECT_FALSE(type(height, "319"));
    EXPECT_TRUE(type(width, "700"));
    EXPECT_EQ(stage().rect().size(), QSize(480, 320));
    EXPECT_TRUE(type(height, "400"));
    EXPECT_EQ(stage().rect().size(), QSize(700, 400));
    // Nobody's memory holds what a finger that stays on a key can ask for.
    EXPECT_TRUE(type(width, "99999999"));
    EXPECT_LE(stage().rect().width(), 8192);
}

TEST_F(AppDelegateTest, OffStopsTheShowAndBothExportButtonsAtOnce) {
    const auto canExport = [this] {
        const bool can = find<QAction>("savepictToolbar").isEnabled();
        for (const char* name : {"savemovieToolbar", "fileExport", "fileExport2"}) {
            EXPECT_EQ(find<QAction>(name).isEnabled(), can) << name;
        }
        return can;
    };
    auto& path = find<PathControl>("pathControlT1");
    EXPECT_FALSE(canExport());
    EXPECT_EQ(path.stringValue(), QString::fromStdString(std::string(unknownFolderText)));
    around.panel.answer = std::nullopt; // Cancelled.
    path.click();
    EXPECT_FALSE(canExport());
    around.panel.answer = home.path();
    path.click();
    EXPECT_TRUE(canExport());
    EXPECT_EQ(path.stringValue(), QString::fromStdString(home.path().string()));
    QTest::keyClick(&app.window(), Qt::Key_F5);
    EXPECT_FALSE(canExport());
    QTest::keyClick(&app.window(), Qt::Key_F5);
    EXPECT_TRUE(canExport());
    EXPECT_TRUE(find<QAction>("appPreferences").isEnabled());
}

TEST_F(AppDelegateTest, TheSidebarOpensAtItsPlaceOnceAndComesBackWhereItWas) {
    auto& command = find<QAction>("windowOpensettings");
    auto& button = find<QAction>("showsettingsToolbar");
    command.trigger();
    const QRect main = app.window().geometry();
    EXPECT_EQ(app.sidebar().geometry(), QRect(main.right() + 1 - 296, main.top() + 81, 296, 559));
    EXPECT_FALSE(command.isEnabled() || button.isEnabled());
    app.sidebar().setGeometry(30, 40, 320, 500);
    app.sidebar().close();
    EXPECT_TRUE(command.isEnabled() && button.isEnabled());
    button.trigger();
    EXPECT_EQ(app.sidebar().geometry(), QRect(30, 40, 320, 500));
    app.window().close();
    EXPECT_FALSE(app.sidebar().isVisible());
}

TEST_F(AppDelegateTest, QuitClosesTheWindow) {
    QTest::keyClick(&app.window(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !app.window().isVisible(); }));
}

class FirstLaunchTest : public ::testing::Test {
protected:
    QWidget* introduction() {
        const auto windows = QApplication::topLevelWidgets();
        const auto found = std::ranges::find(windows, QStringLiteral("introductionWindow"), &QWidget::objectName);
        return found == windows.end() ? nullptr : *found;
    }

    TemporaryFolder home;
    PreparedSurroundings around{home};
};

TEST_F(FirstLaunchTest, BringsTheIntroductionWhichMakesWayAndGoesWithTheMainWindow) {
    AppDelegate app(AppFolder(home.path()), around.with());
    app.launch();
    QAction& tour = app.window().menus().action(Command::AppQuicktour);
    EXPECT_FALSE(tour.isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return introduction() != nullptr && introduction()->isVisible(); }));
    EXPECT_FALSE(tour.isEnabled());
    introduction()->close();
    EXPECT_TRUE(tour.isEnabled());
    tour.trigger();
    EXPECT_TRUE(introduction()->isVisible());
    EXPECT_FALSE(tour.isEnabled());
    // Closed while another command has the menus rest, it enables its own when they come back.
    app.window().menus().action(Command::HelpSupport).trigger();
    introduction()->close();
    EXPECT_FALSE(tour.isEnabled());
    QTest::keyClick(app.window().findChild<QMessageBox*>(QStringLiteral("supportAlert")), Qt::Key_Escape);
    EXPECT_TRUE(tour.isEnabled());
    tour.trigger();
    QAction& guide = app.window().menus().action(Command::EmitterShow);
    guide.trigger();
    EXPECT_FALSE(guide.isEnabled());
    auto* guideWindow = app.window().findChild<QWidget*>(QStringLiteral("guideWindow"));
    ASSERT_NE(guideWindow, nullptr);
    app.window().close();
    EXPECT_FALSE(introduction()->isVisible() || guideWindow->isVisible());
    EXPECT_TRUE(guide.isEnabled());
}

TEST_F(FirstLaunchTest, WindowsHiddenTogetherComeBackTogether) {
    AppDelegate app(AppFolder(home.path()), around.with());
    app.launch();
    ASSERT_TRUE(QTest::qWaitFor([&] { return introduction() != nullptr && introduction()->isVisible(); }));
    app.window().menus().action(Command::AppHideapp).trigger();
    EXPECT_TRUE(app.window().isMinimized() && introduction()->isMinimized());
    app.window().setWindowState(Qt::WindowNoState); // As somebody does who picks one of them from the desktop's bar.
    EXPECT_FALSE(introduction()->isMinimized());
    introduction()->showMinimized();
    app.window().showMinimized();
    app.window().setWindowState(Qt::WindowNoState);
    EXPECT_TRUE(introduction()->isMinimized()); // Each by itself comes back by itself.
}

TEST_F(FirstLaunchTest, WindowsClosedWhileMinimizedOpenInSight) {
    AppDelegate app(AppFolder(home.path()), around.with());
    app.launch();
    ASSERT_TRUE(QTest::qWaitFor([&] { return introduction() != nullptr && introduction()->isVisible(); }));
    const auto windowOf = [&](const char* name) { return app.window().findChild<QWidget*>(QString::fromLatin1(name)); };
    const std::pair<Command, const char*> windows[] = {{Command::FileExportsettings, "exportWindow"},
                                                       {Command::EmitterShow, "guideWindow"},
                                                       {Command::AppAbout, "aboutBox"}};
    for (const auto& [command, name] : windows) {
        app.window().menus().action(command).trigger();
        ASSERT_NE(windowOf(name), nullptr) << name;
        windowOf(name)->showMinimized();
        windowOf(name)->close();
        app.window().showMinimized(); // And what they hang from is out of sight.
        app.window().menus().action(command).trigger();
        EXPECT_TRUE(windowOf(name)->isVisible() && !windowOf(name)->isMinimized()) << name;
        EXPECT_FALSE(app.window().isMinimized()) << name;
        windowOf(name)->close();
    }
    introduction()->showMinimized();
    introduction()->close();
    app.window().menus().action(Command::AppQuicktour).trigger();
    EXPECT_TRUE(introduction()->isVisible() && !introduction()->isMinimized());
}

TEST_F(FirstLaunchTest, SwitchedOffTheIntroductionStaysAwayAndItsCommandIsThere) {
    skipIntroduction(home);
    AppDelegate app(AppFolder(home.path()), around.with());
    app.launch();
    auto* stage = app.window().findChild<StageView*>(QStringLiteral("stage"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return stage->renderedFrames() > 1; }));
    EXPECT_EQ(introduction(), nullptr);
    EXPECT_TRUE(app.window().menus().action(Command::AppQuicktour).isEnabled());
}

TEST(ModalPlace, OnlyWhatWasAskedForBringsBackAMinimizedWindow) {
    QWidget window;
    QDialog asked(&window);
    QDialog unasked(&window);
    window.showMinimized();
    openModalUnasked(unasked);
    EXPECT_TRUE(unasked.isVisible() && window.isMinimized());
    openModal(asked);
    EXPECT_TRUE(asked.isVisible() && !window.isMinimized());
}

} // namespace

} // namespace starbloom
