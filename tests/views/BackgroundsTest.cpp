// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/backgrounds/BackgroundViews.h"

#include <QTest>
#include <gtest/gtest.h>

#include <memory>

namespace starbloom {

namespace {

/// What a view shows on a magenta window, one pixel for each point.
QImage shown(QWidget& view, const QSize& size) {
    QWidget window;
    window.setPalette(QPalette(Qt::magenta));
    window.resize(400, 400);
    view.setParent(&window);
    view.resize(size);
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    QImage image = window.grab().toImage().scaled(400, 400).convertToFormat(QImage::Format_RGB32);
    view.setParent(nullptr);
    return image;
}

void expectNear(const QColor& color, int red, int green, int blue, const char* where) {
    EXPECT_NEAR(color.red(), red, 1) << where;
    EXPECT_NEAR(color.green(), green, 1) << where;
    EXPECT_NEAR(color.blue(), blue, 1) << where;
}

TEST(Gradation, TextsBecomeNumbersInSinglePrecision) {
    const GradientStop stop = numbersOf({"195", "148", "56", "50", "0.500034"});
    EXPECT_EQ(stop.color, (std::array<float, 4>{195.0F / 255.0F, 148.0F / 255.0F, 56.0F / 255.0F, 0.5F}));
    EXPECT_EQ(stop.position, static_cast<double>(0.500034F));
    EXPECT_NE(stop.position, 0.500034);
    const GradientStop odd = numbersOf({"7 of 9", "", " 12", "x", "0.0f"});
    EXPECT_EQ(odd.color, (std::array<float, 4>{7.0F / 255.0F, 0.0F, 12.0F / 255.0F, 0.0F}));
    EXPECT_EQ(odd.position, 0.0);
}

TEST(Gradation, RunsFromCornerToCornerAtAnyAngle) {
    const QSizeF size(200.0, 100.0);
    const auto place = [&](double x, double y, double angle) { return placeInGradient({x, y}, size, angle); };
    EXPECT_EQ(place(0.0, 70.0, 0.0), 0.0);
    EXPECT_EQ(place(50.0, 20.0, 0.0), 0.25);
    EXPECT_EQ(place(50.0, 25.0, 270.0), 0.25);
    EXPECT_EQ(place(50.0, 25.0, -90.0), 0.25);
    EXPECT_EQ(place(50.0, 25.0, 90.0), 0.75);
    EXPECT_EQ(place(50.0, 25.0, 180.0), 0.75);
    EXPECT_NEAR(place(0.0, 100.0, 60.0), 0.0, 1.0e-12);
    EXPECT_NEAR(place(200.0, 0.0, 60.0), 1.0, 1.0e-12);
    // Half of 100 upwards and half of 200 to the left of the middle, of 186.6 in all.
    EXPECT_NEAR(place(0.0, 0.0, 60.0), 0.5 - (100.0 * 0.5 - 50.0 * 0.8660254) / 186.60254, 1.0e-7);
}

TEST(Gradation, APictureHasOnePixelForEachWholePointAndItsAlpha) {
    const ColorStop stops[] = {{"200", "100", "0", "50", "0"}, {"200", "100", "0", "100", "1"}};
    const QImage image = createGradientImage(stops, {10.9, 4.9}, 0.0);
    EXPECT_EQ(image.size(), QSize(10, 4));
    EXPECT_NEAR(image.pixelColor(0, 3).alphaF(), 0.5 + 0.5 * 0.5 / 10.9, 0.003);
    EXPECT_NEAR(image.pixelColor(9, 0).alphaF(), 0.5 + 0.5 * 9.5 / 10.9, 0.003);
    EXPECT_EQ(createGradientImage(stops, {10.0, 4.0}, 0.0, 1.5).size(), QSize(15, 6));
    EXPECT_TRUE(createGradientImage(stops, {0.5, 40.0}, 0.0).isNull());
}

TEST(GradientView, ShowsItsStopsWhereTheyLie) {
    BackgroundView10 dark;
    const QImage grey = shown(dark, {300, 200});
    expectNear(grey.pixelColor(0, 0), 47, 47, 47, "top");
    expectNear(grey.pixelColor(299, 20), 33, 33, 33, "a tenth down");
    expectNear(grey.pixelColor(150, 100), 0, 0, 0, "middle");
    expectNear(grey.pixelColor(150, 60), 16, 16, 16, "three tenths down, half way");
    expectNear(grey.pixelColor(0, 199), 47, 47, 47, "bottom");
    EXPECT_EQ(grey.pixelColor(150, 200), QColor(Qt::magenta));

    BackgroundView1 amber;
    const QImage slanted = shown(amber, {200, 100});
    expectNear(slanted.pixelColor(0, 99), 195, 148, 56, "bottom left");
    expectNear(slanted.pixelColor(199, 0), 124, 22, 4, "top right");
    expectNear(slanted.pixelColor(100, 49), 194, 93, 6, "middle");

    BackgroundView11 strip;
    const QImage narrow = shown(strip, {300, 50});
    expectNear(narrow.pixelColor(0, 10), 255, 173, 0, "left");
    expectNear(narrow.pixelColor(229, 49), 255, 255, 0, "right");
    EXPECT_EQ(narrow.pixelColor(230, 10), QColor(Qt::magenta));

    BackgroundView12 band;
    shown(band, {300, 80});
    EXPECT_EQ(band.imageSize(), QSizeF(6400.0, 80.0));
    BackgroundView14 sheet;
    const QImage pale = shown(sheet, {400, 300});
    EXPECT_EQ(sheet.imageSize(), QSizeF(356.0, 6500.0));
    expectNear(pale.pixelColor(355, 299), 217, 236, 252, "sheet");
    EXPECT_EQ(pale.pixelColor(356, 10), QColor(Qt::magenta));
}

TEST(GradientView, KeepsThePictureOfItsFirstSizeAndAppendsStopsWhenMadeAgain) {
    BackgroundView13 green;
    EXPECT_TRUE(green.colorArray().empty()); // Unseen, nothing is made.
    shown(green, {100, 100});
    const QImage grown = shown(green, {100, 200});
    expectNear(grown.pixelColor(50, 0), 181, 254, 1, "top");
    expectNear(grown.pixelColor(50, 99), 105, 144, 1, "where it ended at first");
    EXPECT_EQ(grown.pixelColor(50, 100), QColor(Qt::magenta));
    EXPECT_EQ(green.colorArray().size(), 2U);
    green.refresh();
    EXPECT_EQ(green.colorArray().size(), 4U);
    const QImage again = shown(green, {100, 200});
    expectNear(again.pixelColor(50, 0), 181, 254, 1, "top");
    expectNear(again.pixelColor(50, 100), 143, 199, 1, "middle");

    BackgroundView13 none;
    shown(none, {0, 0});
    EXPECT_EQ(shown(none, {100, 100}).pixelColor(50, 50), QColor(Qt::magenta));
}

TEST(FlatView, FillsAllOfItself) {
    const std::pair<std::unique_ptr<QWidget>, QColor> members[] = {
        {std::make_unique<BackgroundView0>(), QColor(170, 170, 170)},
        {std::make_unique<BackgroundView2>(), QColor(167, 181, 195)},
        {std::make_unique<BackgroundView3>(), QColor(227, 241, 255)},
        {std::make_unique<BackgroundView4>(), QColor(66, 65, 6)},
        {std::make_unique<BackgroundView5>(), QColor(70, 70, 70)},
    };
    for (const auto& [view, color] : members) {
        const QImage image = shown(*view, {60, 40});
        EXPECT_EQ(image.pixelColor(0, 0), color);
        EXPECT_EQ(image.pixelColor(59, 39), color);
    }
}

TEST(BackView, HasRoundCornersAndABorderThatLetsItsGroundShineThrough) {
    BackView2 box;
    const QImage image = shown(box, {60, 40});
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::magenta));
    EXPECT_EQ(image.pixelColor(30, 20), QColor(227, 241, 255));
    EXPECT_EQ(image.pixelColor(30, 2), QColor(227, 241, 255));
    expectNear(image.pixelColor(30, 0), 182, 207, 232, "border");
    expectNear(image.pixelColor(59, 20), 182, 207, 232, "border");
}

} // namespace

} // namespace starbloom
