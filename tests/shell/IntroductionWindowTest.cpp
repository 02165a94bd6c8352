// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/IntroductionWindow.h"

#include "persistence/stores/StoreTables.h"
#include "shell/introduction/Bundle.h"
#include "shell/introduction/PageBadge.h"
#include "tests/support/TemporaryFolder.h"
#include "views/DisplayView.h"
#include "views/Texts.h"

#include <QAbstractButton>
#include <QFontInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QRawFont>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <set>

namespace starbloom {

namespace {

TEST(IntroductionPages, GoOnePageAtATimeFromEndToEndWithRedEnds) {
    IntroductionPages pages;
    EXPECT_TRUE(!pages.isBadgeRed() && !pages.canGoBack() && pages.canGoForward()); // Red only to those who come back.
    EXPECT_FALSE(pages.back());
    for (int page = 2; page <= 13; ++page) {
        EXPECT_TRUE(pages.forward());
        EXPECT_EQ(pages.page(), page);
        EXPECT_TRUE(pages.isBadgeRed() == (page == 13) && pages.canGoBack() && pages.canGoForward() == (page < 13));
    }
    EXPECT_FALSE(pages.forward());
    EXPECT_TRUE(pages.page() == 13 && pages.isBadgeRed());
    for (int page = 12; page >= 1; --page) {
        EXPECT_TRUE(pages.back());
        EXPECT_EQ(pages.page(), page);
        EXPECT_TRUE(pages.isBadgeRed() == (page == 1) && pages.canGoBack() == (page > 1) && pages.canGoForward());
    }
    EXPECT_TRUE(!pages.back() && pages.forward() && !pages.isBadgeRed());
}

/// The smallest rectangle around what is not black.
QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qRed(image.pixel(x, y)) > 60) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

TEST(PageBadge, ShowsEachNumberOfThePagesInTheMiddleOfADisc) {
    const QFont font = fontFromBundle("Univercity", 18, "otf");
    EXPECT_EQ(QFontInfo(font).family(), "Univercity");
    EXPECT_TRUE(QRawFont::fromFont(font).supportsCharacter(QChar(u'0'))); // Not merely the family's name.
    std::set<QByteArray> faces;
    for (const double scale : {1.0, 2.0}) {
        for (const char* number : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "13"}) {
            const QImage face = stringImage7(number, Qt::black, scale);
            ASSERT_EQ(face.size(), QSize(32, 32) * scale);
            const QRectF ink = inkOf(face);
            const double digits = static_cast<double>(std::string_view(number).size());
            EXPECT_TRUE(ink.width() > 6 * scale * digits && ink.width() <= 10 * scale * digits) << number;
            EXPECT_NEAR(ink.height(), 14 * scale, scale) << number;
            EXPECT_NEAR(ink.center().x(), 16 * scale, 1.5 * scale) << number;
            EXPECT_NEAR(ink.center().y(), 16 * scale, scale) << number;
            faces.insert({reinterpret_cast<const char*>(face.constBits()), face.sizeInBytes()});
        }
    }
    EXPECT_EQ(faces.size(), 24U);
    const QImage badge = roundCorners7(stringImage7(" ", Qt::red), {16, 16});
    const QColor centre = badge.pixelColor(16, 16);
    EXPECT_EQ(centre, QColor(Qt::red));
    for (const QPoint& corner : {QPoint(0, 0), QPoint(31, 0), QPoint(3, 3), QPoint(28, 28)}) {
        EXPECT_EQ(badge.pixelColor(corner).alpha(), 0);
    }
    for (const QPoint& edge : {QPoint(16, 0), QPoint(0, 16), QPoint(31, 15), QPoint(6, 6)}) {
        EXPECT_GT(badge.pixelColor(edge).alpha(), 200);
    }
}

class IntroductionWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directory(home / "data");
        appFolder.createAppFolder();
        stores.openCreateDB2();
        window.prepareFirstPage();
    }

    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = window.findChild<Widget*>(QString::fromUtf8(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    void press(int key, int times = 1) {
        for (int i = 0; i < times; ++i) {
            QWidget* focus = window.focusWidget();
            QTest::keyClick(focus != nullptr ? focus : &window, static_cast<Qt::Key>(key));
        }
    }

    void open() {
        window.showIntroduction();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    std::string storedSwitch() const {
        Stores fresh(appFolder);
        fresh.populateDB2();
        return fresh.checkboxValue(1);
    }

    QColor badgeColor() { return find<QWidget>("countView7").grab().toImage().pixelColor(16, 3); }

    TemporaryFolder home;
    AppFolder appFolder{home / "data"};
    Stores stores{appFolder};
    QWidget main;
    IntroductionWindow window{stores, main};
};

TEST_F(IntroductionWindowTest, EachPageHasItsPictureAndATextThatFits) {
    open();
    auto& text = find<QLabel>("introductionTextview7");
    EXPECT_EQ(text.palette().color(QPalette::WindowText), QColor(Qt::white));
    const QSize size = window.size();
    std::set<QString> texts;
    std::set<QByteArray> pictures;
    for (int page = 1; page <= IntroductionPages::count; ++page, window.forward7Clicked()) {
        EXPECT_EQ(window.introductionPage(), page);
        const bool named = text.text().contains(QGuiApplication::applicationDisplayName());
        EXPECT_EQ(named, page == 1 || page == 5 || page == 6 || page == 9 || page == 11) << page;
        EXPECT_FALSE(text.text().contains(u"introductionDescript") || text.text().contains(u'%')) << page;
        EXPECT_LE(text.heightForWidth(text.width()) * 1.4, text.height()) << page; // Other languages are longer.
        const QImage shown = find<QWidget>("introView7").grab().toImage();
        pictures.insert(QByteArray(reinterpret_cast<const char*>(shown.constBits()), shown.sizeInBytes()));
        texts.insert(text.text());
    }
    EXPECT_EQ(texts.size(), 13U);
    EXPECT_EQ(pictures.size(), 13U);
    EXPECT_EQ(window.size(), size);
    EXPECT_EQ(imageNamed("Screenshot_002", "de").deviceIndependentSize(), QSizeF(600, 400)); // The English one.
    EXPECT_TRUE(imageNamed("Screenshot_014", "en").isNull());
}

TEST_F(IntroductionWindowTest, ButtonsAndKeysTurnPagesWhicheverControlHasTheKeyboard) {
    open();
    auto& back = find<QAbstractButton>("backButton7");
    auto& forward = find<QAbstractButton>("forwardButton7");
    EXPECT_TRUE(forward.isEnabled() && !back.isEnabled() && forward.hasFocus());
    EXPECT_EQ(badgeColor(), QColor(Qt::black));
    press(Qt::Key_Return);
    press(Qt::Key_Right);
    find<QWidget>("noshowButton7").setFocus();
    press(Qt::Key_PageDown);
    EXPECT_EQ(window.introductionPage(), 4);
    forward.setFocus();
    press(Qt::Key_Space, 9 + 1); // At the end the other button has the keyboard, not the check box.
    EXPECT_EQ(window.introductionPage(), 12);
    press(Qt::Key_Right, 13);
    EXPECT_TRUE(window.introductionPage() == 13 && back.isEnabled() && !forward.isEnabled());
    EXPECT_EQ(badgeColor(), QColor(Qt::red));
    back.click();
    EXPECT_TRUE(window.introductionPage() == 12 && forward.isEnabled());
    EXPECT_EQ(badgeColor(), QColor(Qt::black));
    press(Qt::Key_Left, 6);
    press(Qt::Key_PageUp, 6);
    EXPECT_TRUE(window.introductionPage() == 1 && !back.isEnabled());
    EXPECT_EQ(badgeColor(), QColor(Qt::red));
}

TEST_F(IntroductionWindowTest, ComesBackOnThePageThatWasShownLast) {
    EXPECT_FALSE(window.introductionWindowOpen());
    QSignalSpy opened(&window, &IntroductionWindow::opened);
    QSignalSpy closed(&window, &IntroductionWindow::closed);
    open();
    EXPECT_FALSE(window.testAttribute(Qt::WA_QuitOnClose) || window.isModal());
    press(Qt::Key_Right, 6);
    press(Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    window.close(); // As the main window does, whether it is open or not.
    EXPECT_EQ(closed.size(), 1);
    EXPECT_TRUE(window.introductionWindowOpen());
    window.quicktourApp();
    EXPECT_TRUE(window.isVisible() && window.introductionPage() == 7);
    EXPECT_EQ(opened.size(), 2);
}

TEST_F(IntroductionWindowTest, TheCheckBoxIsStoredAndFollowsTheStoreWhenItComesBack) {
    open();
    QSignalSpy changed(&window, &IntroductionWindow::switch2Changed);
    auto& box = find<QAbstractButton>("noshowButton7");
    for (const bool on : {true, false, true}) {
        box.click();
        EXPECT_EQ(box.isChecked(), on);
        EXPECT_EQ(storedSwitch(), on ? "1" : "0");
        EXPECT_EQ(changed.takeFirst().at(0).toBool(), on);
    }
    window.close();
    stores.saveData2("0", "Value02");
    window.quicktourApp();
    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(stores.checkboxArray().size(), generalDefinition().rows.size());
    EXPECT_TRUE(changed.isEmpty());
    stores.saveData2("1", "Value02");
    window.quicktourApp();
    EXPECT_TRUE(box.isChecked());
}

} // namespace

} // namespace starbloom
