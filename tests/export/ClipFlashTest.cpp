// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/FlashCheck.h"
#include "tests/export/ClipFrames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace starbloom {

namespace {

using Rgb = std::array<std::uint8_t, 3>;

/// A picture of 48 by 36 spots; a field has 16 by 12.
constexpr int spotSide = 4;
constexpr int width = 48 * spotSide;
constexpr int height = 36 * spotSide;

/// A light in the middle that goes on and off: its size in spots, its two colours, and its rate.
struct Flashing {
    int columns = 16;
    int rows = 12;
    Rgb dark{0, 0, 0};
    Rgb light{255, 255, 255};
    int changes = 20;          ///< In all.
    double perSecond = 8.0;    ///< Changes, not flashes.
    int framesPerSecond = 120; ///< All rates below divide it.
    bool spreads = false;      ///< The right half follows the left one after half of a change's time.
};

void paint(ImageBuffer& frame, int left, int right, int rows, const Rgb& color) {
    const int top = height / 2 - rows / 2 * spotSide;
    for (int y = top; y < top + rows * spotSide; ++y) {
        for (int x = left; x < right; ++x) {
            std::copy_n(color.begin(), 3, frame.row(y) + 4 * x);
        }
    }
}

FlashReport check(const Flashing& flashing) {
    FlashCheck check(width, height, {flashing.framesPerSecond, 1});
    const int left = width / 2 - flashing.columns / 2 * spotSide;
    const int right = left + flashing.columns * spotSide;
    const int period = static_cast<int>(flashing.framesPerSecond / flashing.perSecond + 0.5);
    for (int i = 0; i <= period * (flashing.changes + 2); ++i) {
        ImageBuffer frame(width, height);
        const auto at = [&](int number) {
            const int change = std::clamp(number / period, 0, flashing.changes);
            return change % 2 == 0 ? flashing.dark : flashing.light;
        };
        paint(frame, left, width / 2, flashing.rows, at(i));
        paint(frame, width / 2, right, flashing.rows, at(flashing.spreads ? i - period / 2 : i));
        check.add(frame);
    }
    return check.report();
}

TEST(FlashCheck, limitsAreWhereTheyAreSaidToBe) {
    struct Case {
        const char* what;
        Flashing flashing;
        bool passes;
        bool redPasses = true;
    };

    // Light of 0.1 is sRGB 89.04, so 90 above black is a change and 89 is none; light of 0.8 is sRGB 231.1.
    const std::vector<Case> cases{
        {"four flashes a second", {}, false},
        {"three flashes a second", {.perSecond = 6.0}, true},
        {"a little more than three", {.perSecond = 6.3158, .framesPerSecond = 120}, false},
        {"three and a half, then rest", {.changes = 7}, false},
        {"three, then rest", {.changes = 6}, true},
        {"a change of more than a tenth", {.light = {90, 90, 90}}, false},
        {"a change of less than a tenth", {.light = {89, 89, 89}}, true},
        {"the darker one is below 0.8", {.dark = {231, 231, 231}}, false},
        {"the darker one is above 0.8", {.dark = {232, 232, 232}}, true},
        {"one spot more than a quarter", {.columns = 7, .rows = 7}, false},
        {"exactly a quarter", {.columns = 8, .rows = 6}, true},
        {"red, too dark for a general flash", {.light = {110, 0, 0}}, true, false},
        {"red that is not saturated", {.light = {110, 60, 60}}, true},
        {"two flashes a second that spread slowly", {.perSecond = 4.0, .spreads = true}, true},
    };
    for (const auto& [what, flashing, passes, redPasses] : cases) {
        const FlashReport report = check(flashing);
        EXPECT_EQ(report.general.passes, passes) << what << ": " << report.general.flashes << " over "
                                                 << report.general.area << " from " << report.general.start;
        EXPECT_EQ(report.red.passes, redPasses) << what << ": " << report.red.flashes;
        EXPECT_EQ(report.passes(), passes && redPasses) << what;
    }
}

TEST(FlashCheck, tellsOfTheWorstSecond) {
    FlashCheck check(300, 240, {30, 1});
    for (int i = 0; i < 300; ++i) {
        ImageBuffer frame(300, 240);
        // Every third frame from 5 s to 6 s, in the lower right; one slow flash before.
        const bool lit = (i >= 30 && i < 60) || (i >= 150 && i < 180 && i / 3 % 2 == 0);
        for (int y = 120; lit && y < 240; ++y) {
            std::fill(frame.row(y) + 4 * 200, frame.row(y) + 4 * 300, std::uint8_t{255});
        }
        check.add(frame);
    }
    const FlashFinding found = check.report().general;
    EXPECT_FALSE(found.passes);
    EXPECT_DOUBLE_EQ(found.flashes, 5.0);
    EXPECT_NEAR(found.start, 5.0, 1.0e-9);
    EXPECT_GT(found.area, 0.9);
    EXPECT_GT(found.x, 0.6);
    EXPECT_GT(found.y, 0.5);
}

TEST(FlashCheck, roundsCountWithTheirSeam) {
    const auto findingOf = [](Playback playback, int length, const auto& isLit) {
        FlashCheck check(300, 240, {60, 1}, playback);
        for (int i = 0; i < length; ++i) {
            ImageBuffer frame(300, 240);
            const auto bytes = frame.bytes();
            std::ranges::fill(bytes, isLit(i) ? std::uint8_t{255} : std::uint8_t{0});
            check.add(frame);
        }
        return check.report().general;
    };
    // One flash in 0.3 s is harmless alone; begun in the light, its first round shows a single change.
    const auto lateFlash = [](int i) { return i >= 6 && i < 12; };
    const auto startsLit = [](int i) { return i < 6; };
    EXPECT_TRUE(findingOf(Playback::Once, 18, lateFlash).passes);
    EXPECT_DOUBLE_EQ(findingOf(Playback::RoundAndRound, 18, lateFlash).flashes, 3.5);
    EXPECT_DOUBLE_EQ(findingOf(Playback::RoundAndRound, 18, startsLit).flashes, 3.5);
    EXPECT_LT(findingOf(Playback::RoundAndRound, 18, startsLit).start, 0.3);
    EXPECT_TRUE(findingOf(Playback::RoundAndRound, 20, lateFlash).passes) << "three in a second are allowed";
    // Two flashes at either end of a long round are four around its seam.
    const auto atBothEnds = [](int i) { return (i < 24 || i >= 216) && i % 12 < 6; };
    EXPECT_DOUBLE_EQ(findingOf(Playback::Once, 240, atBothEnds).flashes, 2.0);
    EXPECT_FALSE(findingOf(Playback::RoundAndRound, 240, atBothEnds).passes);
}

TEST(FlashCheck, theShowPassesAndALightningOfItDoesNot) {
    FlashCheck show(320, 240, {30, 1});
    FlashCheck lightning(320, 240, {30, 1});
    const ImageBuffer black(320, 240);
    int number = 0;
    for (const ImageBuffer& frame : showFrames(320, 240, 90, {0.6F, 0.6F, 0.6F, 1.0F})) {
        show.add(frame);
        lightning.add(number++ / 2 % 2 == 0 ? frame : black);
    }
    EXPECT_TRUE(show.report().passes());
    EXPECT_FALSE(lightning.report().general.passes);
}

} // namespace

} // namespace starbloom
