// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/FlashCheck.h"
#include "tests/export/ClipFrames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace starbloom {

namespace {

using Rgb = std::array<std::uint8_t, 3>;

constexpr int width = 192;
constexpr int height = 144;

/// A spot of light in the middle that goes on and off: its size, its two colours, and its rate.
struct Flashing {
    double side = 1.0; ///< Of a field, which is a third of the picture in both directions.
    Rgb dark{0, 0, 0};
    Rgb light{255, 255, 255};
    int changes = 20;          ///< In all.
    double perSecond = 8.0;    ///< Changes, not flashes.
    int framesPerSecond = 120; ///< All rates below divide it.
    bool spreads = false;      ///< Each half of the spot changes on its own, far enough apart in time.
};

void paint(ImageBuffer& frame, int left, int right, const Flashing& flashing, const Rgb& color) {
    const int half = static_cast<int>(flashing.side * height / 6 + 0.5);
    for (int y = height / 2 - half; y < height / 2 + half; ++y) {
        for (int x = left; x < right; ++x) {
            std::copy_n(color.begin(), 3, frame.row(y) + 4 * x);
        }
    }
}

FlashReport check(const Flashing& flashing) {
    FlashCheck check(width, height, {flashing.framesPerSecond, 1});
    const int half = static_cast<int>(flashing.side * width / 6 + 0.5);
    const int period = static_cast<int>(flashing.framesPerSecond / flashing.perSecond + 0.5);
    for (int i = 0; i <= period * (flashing.changes + 2); ++i) {
        ImageBuffer frame(width, height);
        const auto at = [&](int number) {
            const int change = std::clamp(number / period, 0, flashing.changes);
            return change % 2 == 0 ? flashing.dark : flashing.light;
        };
        paint(frame, width / 2 - half, width / 2, flashing, at(i));
        paint(frame, width / 2, width / 2 + half, flashing, at(flashing.spreads ? i - period / 2 : i));
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
        {"a little more than a quarter", {.side = 0.55}, false},
        {"a little less than a quarter", {.side = 0.45}, true},
        {"red, too dark for a general flash", {.light = {110, 0, 0}}, true, false},
        {"red that is not saturated", {.light = {110, 60, 60}}, true},
        {"each half apart, together too slow for one", {.perSecond = 3.0, .spreads = true}, true},
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
