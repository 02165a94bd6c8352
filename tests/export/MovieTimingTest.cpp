// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieTiming.h"

#include <gmock/gmock.h>

#include <limits>

namespace starbloom {

namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

TEST(MovieTiming, launchRateClimbsInHalfSecondsPastTheEndOfTheFade) {
    EXPECT_THAT(fadeInSteps(5.0, 2.0), ElementsAre(LaunchStep{0.0, 1.0}, LaunchStep{0.5, 1.0}, LaunchStep{1.0, 2.0},
                                                   LaunchStep{1.5, 3.0}, LaunchStep{2.0, 4.0}, LaunchStep{2.5, 5.0}));
}

TEST(MovieTiming, incrementHasSixPlacesInSinglePrecision) {
    const auto thirds = fadeInSteps(2.0, 1.5);
    ASSERT_THAT(thirds, SizeIs(7));
    EXPECT_EQ(thirds[1].position, static_cast<double>(0.333333F));
    // A sixth is rounded up to 0.166667, so the ninth sum lies above 1.5 and is left out.
    const auto sixths = fadeInSteps(1.5, 1.5);
    ASSERT_THAT(sixths, SizeIs(9));
    EXPECT_EQ(sixths.back().seconds, 4.0);
    EXPECT_NEAR(sixths.back().position, 1.333336, 1e-6);
}

TEST(MovieTiming, climbThatDoesNotRiseEndsWithTheFade) {
    EXPECT_THAT(fadeInSteps(1.0, 1.4), ElementsAre(LaunchStep{0.0, 1.0}, LaunchStep{0.5, 0.0}, LaunchStep{1.0, 0.0}));
    EXPECT_THAT(fadeInSteps(0.0, 1.0), ElementsAre(LaunchStep{0.0, 1.0}, LaunchStep{0.5, -0.5}, LaunchStep{1.0, -1.0}));
    EXPECT_THAT(fadeInSteps(0.0, infinity), SizeIs(7201));
}

TEST(MovieTiming, oddInputGivesAFewStepsAndNoHang) {
    for (const double fade : {0.0, -1.0, noNumber, 1e-300}) {
        EXPECT_THAT(fadeInSteps(5.0, fade), ElementsAre(LaunchStep{0.0, 1.0})) << fade;
    }
    for (const double birth : {noNumber, infinity, -infinity}) {
        EXPECT_THAT(fadeInSteps(birth, 2.0), ElementsAre(LaunchStep{0.0, 1.0})) << birth;
    }
    EXPECT_THAT(fadeInSteps(1e308, 2.0), SizeIs(1)); // the increment is beyond single precision
    EXPECT_THAT(fadeInSteps(1.007, 1e9), SizeIs(100'001));
}

TEST(MovieTiming, framesAndSeconds) {
    EXPECT_EQ(frameTime(0, 30), 0.0);
    EXPECT_EQ(frameTime(45, 30), 1.5);
    EXPECT_EQ(frameTime(1, 3), 1.0 / 3.0);
    EXPECT_EQ(frameCount(2.0, 30), 60);
    EXPECT_EQ(frameCount(0.999, 30), 29);
    EXPECT_EQ(frameCount(3.5, 25), 87);
    EXPECT_EQ(frameCount(2.3, 100), 230);
    EXPECT_EQ(frameCount(4.35, 100), 435);
    EXPECT_EQ(frameCount(-0.5, 30), 0);
    EXPECT_EQ(frameCount(noNumber, 30), 0);
    EXPECT_EQ(frameCount(infinity, 30), std::numeric_limits<std::int64_t>::max());
}

} // namespace

} // namespace starbloom
