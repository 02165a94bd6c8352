// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/ShowNote.h"
#include "tests/shell/PreparedSurroundings.h"
#include "views/ParameterSlider.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// The application with a folder for exports, and a clock that the test moves.
class ExportTest : public ::testing::Test {
protected:
    void SetUp() override {
        skipIntroduction(home);
        std::filesystem::create_directory(folder);
        AppFolder(home.path()).createAppFolder();
        saveSharedFolder(AppFolder(home.path()).filePath3(), folder);
        app.launch();
        app.window().findChild<SliderPanel*>()->fill();
        ASSERT_TRUE(QTest::qWaitFor([this] { return find<StageView>("stage").renderedFrames() > 0; }));
    }

    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = app.window().findChild<Widget*>(QString::fromUtf8(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    void trigger(const char* action) { find<QAction>(action).trigger(); }

    void press(const char* button) { QTest::mouseClick(&find<QPushButton>(button), Qt::LeftButton); }

    QString told() { return app.window().resultLine().text(); }

    bool isTold(const QString& text) {
        return QTest::qWaitFor([&] { return told() == text; }, 20000);
    }

    double rocketRate() { return app.controller().mortor().value("emitterCells.rocket.birthRate").value_or(-1.0); }

    /// Lets time pass in steps of a frame until the window says something else or the time is over.
    void play(std::chrono::milliseconds time) {
        const QString before = told();
        for (const auto end = now + time; now < end && told() == before;) {
            now += 20ms;
            calls().advance(20ms);
            QTest::qWait(21); // Each step meets a tick of the recording's timer, which knows no other clock.
        }
    }

    HandDrivenCalls& calls() { return around.calls; }

    std::chrono::nanoseconds now = 1h;
    TemporaryFolder home;
    std::filesystem::path folder = home / "out";
    PreparedSurroundings around{home};
    AppDelegate app{AppFolder(home.path()), around.with([this] { return now; })};
};

TEST_F(ExportTest, AClickMakesAPictureThatTellsOfItsShow) {
    QTest::keyClick(&app.window(), Qt::Key_E, Qt::ControlModifier);
    ASSERT_TRUE(isTold(QStringLiteral("Saved Picture.png")));
    const auto note = readShowNote(folder / "Picture.png");
    ASSERT_TRUE(note);
    EXPECT_EQ(note.value().seed, 20U);
    EXPECT_TRUE(note.value().steady);
    auto* link = app.window().resultLine().findChild<QAbstractButton*>();
    link->click();
    EXPECT_EQ(around.shown, folder / "Picture.png");

    // The controls count, kept or not, and so does a slider that has been moved.
    trigger("fileExportsettings");
    QTest::keyClick(&find<QComboBox>("formatPButton3"), Qt::Key_End);
    auto& name = find<QLineEdit>("fileField3");
    name.selectAll();
    name.insert(QStringLiteral("Feu d'été"));
    QTest::keyClick(&find<QDialog>("exportWindow"), Qt::Key_Escape);
    QTest::keyClick(&find<ParameterSlider>("rocketGravitySlider"), Qt::Key_Home);
    trigger("savepictToolbar");
    ASSERT_TRUE(isTold(QStringLiteral("Saved Feu d'été.tif")));
    const auto moved = readShowNote(folder / "Feu d'été.tif");
    ASSERT_TRUE(moved);
    EXPECT_FALSE(moved.value().steady);
}

TEST_F(ExportTest, APictureThatCannotBeWrittenIsOfferedForAnotherFolder) {
    std::filesystem::remove_all(folder);
    trigger("fileExport");
    const auto box = [this] { return app.window().findChild<QMessageBox*>(QStringLiteral("pictureFailure")); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return box() != nullptr; }));
    EXPECT_TRUE(box()->informativeText().contains(QStringLiteral("Picture.png")));
    around.panel.answer = home.path();
    box()->buttons().first()->click();
    ASSERT_TRUE(isTold(QStringLiteral("Saved Picture.png")));
    EXPECT_TRUE(std::filesystem::exists(home / "Picture.png"));
}

TEST_F(ExportTest, SettingsOfPicturesAreKeptAndAWrongNameStopsExportsAndTheCloseButton) {
    trigger("fileExportsettings");
    auto& window = find<QDialog>("exportWindow");
    auto& name = find<QLineEdit>("fileField3");
    EXPECT_FALSE(find<QComboBox>("compressPButton3").isEnabled());
    EXPECT_FALSE(find<QAction>("fileExport").isEnabled());
    name.clear();
    QTest::keyClicks(&name, QStringLiteral(".Fire"));
    EXPECT_FALSE(find<QPushButton>("cancelButton3").isEnabled());
    EXPECT_FALSE(find<QAction>("savepictToolbar").isEnabled());
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
    name.setCursorPosition(0);
    QTest::keyClick(&name, Qt::Key_Delete);
    EXPECT_TRUE(find<QAction>("savepictToolbar").isEnabled());
    auto& format = find<QComboBox>("formatPButton3");
    QTest::keyClick(&format, Qt::Key_Up); // From PNG to JPEG 2000.
    EXPECT_TRUE(find<QComboBox>("compressPButton3").isEnabled());
    press("saveButton3");
    EXPECT_FALSE(find<QPushButton>("saveButton3").isEnabled());
    calls().advance(1500ms);
    EXPECT_TRUE(find<QPushButton>("saveButton3").isEnabled());
    name.setText(QStringLiteral("not kept"));
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(find<QAction>("fileExport").isEnabled());
    trigger("fileExportsettings");
    EXPECT_EQ(name.text(), QStringLiteral("Fire"));
    EXPECT_EQ(format.currentIndex(), 3);
}

TEST_F(ExportTest, MovieSettingsTakeTheSlidersAndGiveAllBack) {
    auto& slider = find<ParameterSlider>("rocketBirthSlider");
    trigger("savemovieToolbar");
    auto& create = find<QPushButton>("createButton4");
    EXPECT_FALSE(slider.isEnabled() || find<QPushButton>("saveButton6").isEnabled());
    EXPECT_FALSE(find<QAction>("fileExport2").isEnabled());
    EXPECT_TRUE(find<QLabel>("label4d").text().endsWith(QStringLiteral("294.9 MB")));
    find<QComboBox>("popupButton4b").setFocus();
    QTest::keyClick(&find<QComboBox>("popupButton4b"), Qt::Key_Home);
    find<QComboBox>("popupButton4c").setCurrentIndex(5);
    QTest::mouseClick(&find<QAbstractButton>("fadeinButton4"), Qt::LeftButton);
    EXPECT_FALSE(create.isEnabled()); // 3.0 seconds with 3.5 of fade-in.
    EXPECT_FLOAT_EQ(static_cast<float>(rocketRate()), 0.1F);
    press("closeButton4");
    EXPECT_FLOAT_EQ(static_cast<float>(rocketRate()), 0.5F);
    EXPECT_TRUE(slider.isEnabled() && find<QPushButton>("saveButton6").isEnabled());

    // Cancelling the panel is no different.
    trigger("fileExport2");
    around.panel.answer = std::nullopt;
    press("createButton4");
    EXPECT_TRUE(slider.isEnabled() && find<QAction>("fileExport2").isEnabled());
    EXPECT_FALSE(find<QDialog>("windowSheet5").isVisible());
}

TEST_F(ExportTest, AMovieIsRecordedAndWrittenAndOneThatIsGivenUpLeavesNothing) {
    around.panel.answer = folder / "film.m4v";
    auto& sheet = find<QDialog>("windowSheet5");
    const auto begin = [this] {
        trigger("fileExport2");
        find<QComboBox>("popupButton4b").setCurrentIndex(0);
        press("createButton4");
    };
    begin();
    EXPECT_EQ(around.panel.asked.suggestedName, "Untitled");
    EXPECT_TRUE(sheet.isVisible());
    play(700ms);
    EXPECT_NE(find<QLabel>("perLabel5").text(), QStringLiteral("0.0%"));
    press("abortButton5");
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_TRUE(find<QAction>("fileExport2").isEnabled());
    calls().advance(6s);
    play(60ms);
    EXPECT_EQ(TemporaryFolder::countIn(folder), 0);

    begin();
    play(5s);
    ASSERT_TRUE(isTold(QStringLiteral("Saved film.m4v (3.0 s, 72 frames)")));
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_TRUE(find<ParameterSlider>("rocketBirthSlider").isEnabled());
    EXPECT_EQ(TemporaryFolder::countIn(folder), 1);
}

} // namespace

} // namespace starbloom
