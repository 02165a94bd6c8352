// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/GuideWindow.h"

#include "export/picture/PngCodec.h"
#include "resources/Resources.h"
#include "shell/SettingsSidebar.h"
#include "shell/SliderPanel.h"
#include "shell/guide/GuideStage.h"
#include "tests/support/HandDrivenCalls.h"
#include "tests/support/TemporaryFolder.h"
#include "views/ParameterSlider.h"

#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

class GuideWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        AppFolder(home.path()).createAppFolder();
        stores.openCreateDB0();
        mainWindow.setGeometry(100, 200, 700, 600);
        mainWindow.show();
        relaunch();
    }

    /// What is kept in memory alone is gone.
    void relaunch() {
        guide.reset();
        memory = {};
        guide = std::make_unique<GuideWindow>(sharedSparkImage(sparkPng()), mainWindow, stores, memory, calls);
    }

    void move(const QRect& place) {
        guide->setGeometry(place);
        ASSERT_TRUE(QTest::qWaitFor([&] { return guide->geometry() == place && calls.waiting() > 0; }));
    }

    GuideStage* stage(const ParameterRow& row, const char* end) {
        return guide->findChild<GuideStage*>(QString::fromUtf8(row.name.data()) + QString::fromUtf8(end));
    }

    bool waitForPictures() {
        return QTest::qWaitFor([this] { return !guide->isDrawing(); }, 20'000);
    }

    /// The main window's rows, the sidebar's and the guide's.
    std::vector<std::string> storedNow() const {
        Stores fresh{AppFolder(home.path())};
        EXPECT_TRUE(fresh.populateDB0());
        std::vector<std::string> rows;
        for (std::size_t i = 0; i < 12; ++i) {
            rows.push_back(fresh.windowValue(i));
        }
        return rows;
    }

    TemporaryFolder home;
    HandDrivenCalls calls;
    Stores stores{AppFolder(home.path())};
    QWidget mainWindow;
    WindowFrameMemory memory;
    std::unique_ptr<GuideWindow> guide;
};

/// The mean difference of two pictures of the same size, 0 to 255.
double difference(const QImage& one, const QImage& other) {
    double sum = 0.0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
        }
    }
    return sum / (3.0 * one.width() * one.height());
}

TEST_F(GuideWindowTest, OpensByTheMainWindowAndWithinOneRunWhereItWas) {
    const QSignalSpy opened(guide.get(), &GuideWindow::opened);
    const QSignalSpy closed(guide.get(), &GuideWindow::closed);
    guide->showEmitterGuide();
    EXPECT_EQ(guide->geometry(), QRect(100, 281, 450, 542));
    EXPECT_TRUE(memory.isGuideOpen);

    const QRect moved(40, 70, 460, 500);
    move(moved);
    guide->showEmitterGuide();
    EXPECT_EQ(opened.count(), 1);
    EXPECT_EQ(guide->geometry(), moved);
    guide->close();
    guide->close();
    EXPECT_EQ(closed.count(), 1);
    EXPECT_FALSE(memory.isGuideOpen);
    mainWindow.move(300, 300);
    guide->showEmitterGuide();
    EXPECT_EQ(guide->geometry(), moved);
    EXPECT_EQ(opened.count(), 2);
    guide->close();

    mainWindow.setGeometry(150, 250, 700, 600);
    relaunch();
    guide->showEmitterGuide();
    EXPECT_EQ(guide->geometry(), QRect(150, 331, 450, 542));
}

TEST_F(GuideWindowTest, AMoveIsWrittenAndKeptInTheSameStep) {
    guide->showEmitterGuide();
    calls.advance(1s);
    EXPECT_EQ(storedNow(), std::vector<std::string>(12, "0"));
    move({40, 70, 460, 500});
    calls.advance(1s);
    EXPECT_EQ(storedNow(),
              (std::vector<std::string>{"0", "0", "0", "0", "0", "0", "0", "0", "460", "500", "40", "510"}));
    EXPECT_EQ(memory.guide, (Frame{40.0, 510.0, 460.0, 500.0}));
}

TEST_F(GuideWindowTest, PicturesShowWhatASliderChangesInThePixelsOfTheScreen) {
    QTest::qWait(50);
    EXPECT_FALSE(guide->isDrawing());
    guide->showEmitterGuide();
    for (const int width : {450, 600}) {
        guide->resize(width, 542);
        QCoreApplication::processEvents();
        ASSERT_TRUE(waitForPictures());
        for (const ParameterRow& row : parameterTable) {
            const GuideStage* lowest = stage(row, "Lowest");
            const GuideStage* highest = stage(row, "Highest");
            const bool hasPictures =
                row.parameter != Parameter::SparkleBirth && row.parameter != Parameter::SparkleSize;
            ASSERT_EQ(lowest != nullptr && highest != nullptr, hasPictures) << row.name;
            if (hasPictures) {
                EXPECT_EQ(lowest->picture().size(), lowest->size() * lowest->devicePixelRatioF()) << row.name;
                EXPECT_GT(lowest->width(), width / 3) << row.name;
                EXPECT_NEAR(lowest->height() * pictureAspect, lowest->width(), 1.0) << row.name;
                EXPECT_GT(difference(lowest->picture(), highest->picture()), 4.0) << row.name;
            }
        }
    }
}

TEST_F(GuideWindowTest, SlidersWithoutPicturesChangeNothingThatCanBeSeen) {
    GuideDrawing drawing(sharedSparkImage(sparkPng()));
    GuideScene scene = *findGuideScene(Parameter::SparkleLife);
    const auto differs = [&](Parameter parameter) {
        scene.parameter = parameter;
        return drawing.draw(scene, SliderEnd::Lowest, 160, 120) != drawing.draw(scene, SliderEnd::Highest, 160, 120);
    };
    EXPECT_TRUE(differs(Parameter::SparkleLife));
    EXPECT_FALSE(differs(Parameter::SparkleBirth));
    EXPECT_FALSE(differs(Parameter::SparkleSize));
}

TEST_F(GuideWindowTest, KeysScrollAndCloseWhateverTheyDoInTheMainWindow) {
    const std::array shortcuts{std::make_unique<QShortcut>(Qt::Key_Escape, &mainWindow),
                               std::make_unique<QShortcut>(QKeySequence::Close, &mainWindow)};
    guide->showEmitterGuide();
    auto& scroll = *guide->findChild<QScrollArea*>();
    ASSERT_TRUE(QTest::qWaitForWindowActive(guide.get()));
    const QScrollBar& bar = *scroll.verticalScrollBar();
    ASSERT_GT(bar.maximum(), 1000);
    EXPECT_EQ(QApplication::focusWidget(), &scroll);
    for (const auto& [key, least, most] : {std::tuple{Qt::Key_Down, 1, 100},
                                           {Qt::Key_PageDown, 300, 700},
                                           {Qt::Key_End, bar.maximum(), bar.maximum()},
                                           {Qt::Key_PageUp, bar.maximum() - 700, bar.maximum() - 300},
                                           {Qt::Key_Home, 0, 0}}) {
        QTest::keyClick(QApplication::focusWidget(), key);
        EXPECT_GE(bar.value(), least) << key;
        EXPECT_LE(bar.value(), most) << key;
    }
    for (const QKeySequence& shut : {QKeySequence(Qt::Key_Escape), QKeySequence(QKeySequence::Close)}) {
        guide->showEmitterGuide();
        ASSERT_TRUE(QTest::qWaitForWindowActive(guide.get()));
        QTest::keyClick(QApplication::focusWidget(), shut[0].key(), shut[0].keyboardModifiers());
        EXPECT_FALSE(guide->isVisible()) << shut.toString().toStdString();
    }
}

TEST_F(GuideWindowTest, ALinkLeadsToItsSlider) {
    SliderPanel panel;
    SettingsSidebar sidebar(panel, mainWindow, stores, memory, calls);
    QObject::connect(guide.get(), &GuideWindow::sliderChosen, &sidebar, &SettingsSidebar::showSlider);
    guide->showEmitterGuide();
    ASSERT_TRUE(QTest::qWaitForWindowActive(guide.get()));
    for (int i = 0; i <= static_cast<int>(Parameter::ExplodeGravity); ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_TRUE(sidebar.isVisible());
    const auto* slider = panel.findChild<ParameterSlider*>(QStringLiteral("explodeGravitySlider"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return slider->hasFocus(); }));
}

} // namespace

} // namespace starbloom
