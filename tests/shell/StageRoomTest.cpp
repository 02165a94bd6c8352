// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/panel/FireworksController.h"
#include "shell/MainWindow.h"
#include "shell/StageSizeFields.h"
#include "shell/Toolbar.h"
#include "tests/support/HandDrivenCalls.h"
#include "views/StageView.h"
#include "views/scrolling/CenterClipView.h"

#include <QGuiApplication>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// The main window with nothing behind it but a stage.
class StageRoomTest : public ::testing::Test {
protected:
    void SetUp() override {
        window.toolbar().makeToolBar();
        window.takeInitialSize();
        window.show();
        ASSERT_TRUE(QTest::qWaitFor([this] { return stage.renderedFrames() > 0; }));
    }

    void typeWidth(const char* text) {
        auto& field = *window.findChild<QLineEdit*>(QStringLiteral("widthFieldT1"));
        field.selectAll();
        field.insert(QString::fromUtf8(text));
    }

    QSize stageSize() const { return stage.rect().size(); }

    QPoint stagePlace() const { return stage.mapTo(&window, QPoint()); }

    QSize room() const { return clipView.size(); }

    bool hasBars() const {
        QCoreApplication::processEvents();
        return clipView.horizontalScrollBar()->isVisible() || clipView.verticalScrollBar()->isVisible();
    }

    HandDrivenCalls calls;
    StageView stage{7};
    FireworksController controller{nullptr, &stage, std::make_shared<SparkImage>()};
    MainWindow window{stage, calls};
    CenterClipView& clipView = *window.findChild<CenterClipView*>();
};

TEST_F(StageRoomTest, ASizeThatNoScreenHasIsScrolledOverUntilAnotherOneIsTyped) {
    typeWidth("3000");
    EXPECT_EQ(stageSize(), QSize(3000, 480));
    EXPECT_LE(window.frameGeometry().width(), QGuiApplication::primaryScreen()->availableVirtualSize().width());
    EXPECT_TRUE(hasBars());
    EXPECT_FALSE(clipView.verticalScrollBar()->isVisible());
    calls.advance(1s);
    EXPECT_EQ(stageSize(), QSize(3000, 480));
    EXPECT_EQ(stage.capture().image.width(), 3000); // What an export takes.
    const QImage unfocused = window.grab().toImage();
    window.setAttribute(Qt::WA_KeyboardFocusChange); // As the tab key does.
    clipView.setFocus();
    EXPECT_NE(window.grab().toImage().pixelColor(3, 300), unfocused.pixelColor(3, 300)); // The focus ring.
    clipView.horizontalScrollBar()->setValue(100);
    EXPECT_EQ(stagePlace().x(), 5 - 100);
    window.resize(window.width(), 800); // Now it is too low for its window.
    EXPECT_EQ(stageSize(), QSize(3000, 480));
    QCoreApplication::processEvents();
    const QRect ground = clipView.viewport()->rect();
    EXPECT_NEAR(stage.geometry().center().y(), ground.center().y(), 1);
    EXPECT_EQ(clipView.grab().toImage().pixelColor(5, 5), QColor(70, 70, 70));
    typeWidth("700");
    EXPECT_EQ(stageSize(), QSize(700, 480));
    EXPECT_EQ(window.size(), QSize(710, 589));
    EXPECT_EQ(stagePlace(), QPoint(5, 82));
    EXPECT_FALSE(hasBars());
}

TEST_F(StageRoomTest, ADesktopThatTakesRoomBackIsToldFromAUserWhoDoes) {
    const auto& field = *window.findChild<QLineEdit*>(QStringLiteral("widthFieldT1"));
    typeWidth("900");
    EXPECT_EQ(stageSize(), QSize(900, 480));
    calls.advance(200ms);
    window.resize(710, 500); // The desktop's answer.
    EXPECT_EQ(stageSize(), QSize(900, 480));
    EXPECT_EQ(field.text(), "900");
    EXPECT_TRUE(hasBars());
    calls.advance(1s);
    window.resize(800, 550); // Larger, and not large enough.
    EXPECT_EQ(stageSize(), QSize(900, 480));
    window.resize(1000, 700);
    EXPECT_EQ(stageSize(), room());
    EXPECT_EQ(stageSize(), QSize(990, 591));
    window.resize(710, 500); // From now on it is the user's.
    EXPECT_EQ(stageSize(), QSize(700, 391));
    EXPECT_FALSE(hasBars());

    typeWidth("900");
    calls.advance(1s); // Granted for good.
    window.resize(710, 500);
    EXPECT_EQ(stageSize(), QSize(700, 391));
}

TEST_F(StageRoomTest, FullScreenIsFilledAndLeavesTheSizeThatWasTyped) {
    typeWidth("3000");
    calls.advance(1s);
    window.setWindowState(Qt::WindowFullScreen);
    EXPECT_TRUE(QTest::qWaitFor([this] { return stageSize() == window.size() && stagePlace().isNull(); }));
    EXPECT_FALSE(hasBars());
    window.setWindowState(Qt::WindowNoState);
    EXPECT_TRUE(QTest::qWaitFor([this] { return stageSize() == QSize(3000, 480); }));
}

/// Counts how often anything but the stage is painted.
class PaintCount final : public QObject {
public:
    using QObject::QObject;

    int count = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
};

TEST_F(StageRoomTest, PlayingPaintsTheStageAlone) {
    controller.slidersMoved();
    ASSERT_TRUE(QTest::qWaitFor([this] { return stage.renderedFrames() >= 5; }));
    PaintCount others;
    for (QWidget* below = clipView.viewport(); below != nullptr; below = below->parentWidget()) {
        below->installEventFilter(&others);
    }
    const auto frames = stage.renderedFrames();
    ASSERT_TRUE(QTest::qWaitFor([&] { return stage.renderedFrames() >= frames + 10; }));
    EXPECT_EQ(others.count, 0);
}

} // namespace

} // namespace starbloom
