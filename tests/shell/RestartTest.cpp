// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"
#include "shell/QtDelayedCalls.h"
#include "tests/shell/PreparedSurroundings.h"
#include "tests/support/TemporaryFolder.h"
#include "views/ParameterSlider.h"

#include <QAction>
#include <QGuiApplication>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// One run of the application after the other, in one home.
class RestartTest : public ::testing::Test {
protected:
    void start() {
        app.reset();
        app = std::make_unique<AppDelegate>(AppFolder(home.path()), around.with());
        app->launch();
        ASSERT_TRUE(QTest::qWaitFor([this] { return app->window().findChild<StageView*>()->renderedFrames() > 0; }));
    }

    ParameterSlider& slider(Parameter parameter) {
        app->window().findChild<SliderPanel*>()->fill();
        return *app->window().findChild<ParameterSlider*>(QString::fromUtf8(row(parameter).name.data()));
    }

    void press(const char* button) {
        QTest::mouseClick(app->window().findChild<QPushButton*>(QString::fromUtf8(button)), Qt::LeftButton);
    }

    Stores storedNow() const {
        Stores stores{AppFolder(home.path())};
        EXPECT_TRUE(stores.populateDB0());
        stores.reloadOnlyDB1();
        return stores;
    }

    TemporaryFolder home;
    PreparedSurroundings around{home};
    HandDrivenCalls& calls = around.calls;
    std::unique_ptr<AppDelegate> app;
};

TEST_F(RestartTest, TheFirstStartLeavesThreeStoresAndACentredWindow) {
    start();
    calls.advance(0ms);
    EXPECT_EQ(TemporaryFolder::countIn(home / "Starbloom"), 3);
    const QRect screen = QGuiApplication::screens().last()->availableGeometry();
    const QRect window = app->window().geometry();
    EXPECT_NEAR(window.center().x(), screen.width() / 2.0, 1.0);
    const Stores stores = storedNow();
    EXPECT_EQ(stores.windowValue(0), std::to_string(window.width()));
    EXPECT_EQ(stores.windowValue(1), std::to_string(window.height()));
}

TEST_F(RestartTest, ASavedPresetComesBackAsItWasWhenTheDelayEnded) {
    start();
    QTest::keyClick(&slider(Parameter::RocketVelocity), Qt::Key_Home);
    press("saveButton6");
    EXPECT_FALSE(app->window().findChild<QPushButton*>(QStringLiteral("saveButton6"))->isEnabled());
    slider(Parameter::SparkleLife).setPosition(12.375F);
    calls.advance(1999ms);
    EXPECT_EQ(storedNow().preferenceValue(13), "400");
    calls.advance(1ms);
    EXPECT_TRUE(app->window().findChild<QPushButton*>(QStringLiteral("saveButton6"))->isEnabled());

    // Moved afterwards and not saved: the load button and the next start both bring the saved one.
    QTest::keyClick(&slider(Parameter::RocketVelocity), Qt::Key_End);
    press("loadButton6");
    EXPECT_EQ(slider(Parameter::RocketVelocity).position(), 250.0F);
    QTest::keyClick(&slider(Parameter::RocketVelocity), Qt::Key_End);
    start();
    EXPECT_EQ(slider(Parameter::RocketVelocity).position(), 250.0F);
    EXPECT_EQ(slider(Parameter::SparkleLife).position(), 12.375F);
    EXPECT_EQ(app->controller().mortor().value("emitterCells.rocket.velocity"), 250.0);
}

TEST_F(RestartTest, TheWindowComesBackWhereItWasLeft) {
    start();
    calls.advance(1s);
    const QRect left(40, 70, 720, 500);
    app->window().setGeometry(left);
    ASSERT_TRUE(QTest::qWaitFor([&] { return app->window().geometry() == left && calls.waiting() > 0; }));
    calls.advance(1s);
    start();
    EXPECT_EQ(app->window().geometry(), left);

    // Closing does not wait for the window to come to rest.
    const QRect moved = left.translated(50, -40);
    app->window().setGeometry(moved);
    ASSERT_TRUE(QTest::qWaitFor([&] { return app->window().geometry() == moved; }));
    app->window().close();
    start();
    EXPECT_EQ(app->window().geometry(), moved);
}

TEST_F(RestartTest, AWindowOnAScreenThatIsGoneIsBroughtBackAndItsPlaceKept) {
    start();
    calls.advance(1s);
    const AppFolder folder(home.path());
    for (const auto& [key, value] : frameRows(0, {5000.0, 5000.0, 700.0, 500.0})) {
        Stores(folder).saveData0(value, key);
    }
    start();
    calls.advance(1s);
    EXPECT_TRUE(app->window().geometry().intersects(QGuiApplication::primaryScreen()->geometry()));
    EXPECT_EQ(app->window().size(), QSize(700, 500));
    EXPECT_EQ(storedNow().windowValue(2), "5000");
}

TEST_F(RestartTest, AFolderForExportsThatIsThereAgainIsUsed) {
    const auto folder = home / "disk";
    const AppFolder files(home.path());
    files.createAppFolder();
    saveSharedFolder(files.filePath3(), folder);
    start();
    const auto& exportPicture = *app->window().findChild<QAction*>(QStringLiteral("fileExport"));
    EXPECT_FALSE(exportPicture.isEnabled());
    std::filesystem::create_directory(folder);
    for (int i = 0; i < 2; ++i) {
        app->window().findChild<QAction*>(QStringLiteral("emitterAnimation"))->trigger();
    }
    ASSERT_TRUE(exportPicture.isEnabled());
    app->window().findChild<QAction*>(QStringLiteral("fileExport"))->trigger();
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(folder / "Picture.png"); }, 20000));
}

TEST_F(RestartTest, StartsWithoutAnyPlaceToKeepFiles) {
    // A file where the folder should be.
    ASSERT_EQ(std::system(("touch '" + (home / "Starbloom").string() + "'").c_str()), 0);
    start();
    EXPECT_EQ(slider(Parameter::RocketVelocity).position(), 400.0F);
    press("saveButton6");
    calls.advance(2s);
    EXPECT_TRUE(app->window().findChild<QPushButton*>(QStringLiteral("saveButton6"))->isEnabled());
    EXPECT_EQ(readFile(home / "Starbloom"), "");
}

TEST(QtDelayedCalls, RunsOnceInOrderOfTimeAndNotWhenCancelled) {
    QtDelayedCalls calls;
    std::string order;
    calls.callAfter(20ms, [&] { order += "b"; });
    const auto dropped = calls.callAfter(1ms, [&] { order += "x"; });
    calls.callAfter(1ms, [&] {
        order += "a";
        calls.callAfter(30ms, [&] { order += "c"; });
    });
    calls.cancel(dropped);
    EXPECT_TRUE(QTest::qWaitFor([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "abc");
}

} // namespace

} // namespace starbloom
