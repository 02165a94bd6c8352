// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Progress.h"

#include <gtest/gtest.h>

namespace starbloom {

namespace {

TEST(Progress, TellsFramesPercentAndTimeLeft) {
    using std::chrono::duration;
    EXPECT_EQ(progressLine(0, 300, duration<double>(0.0)),
              "[------------------------------] 0/300 frames  0 %  starting");
    // A quarter took 30 seconds, so three quarters are left: 90.
    EXPECT_EQ(progressLine(75, 300, duration<double>(30.0)),
              "[#######-----------------------] 75/300 frames  25 %  01:30 left");
    EXPECT_EQ(progressLine(300, 300, duration<double>(120.0)),
              "[##############################] 300/300 frames  100 %  00:00 left");
}

} // namespace

} // namespace starbloom
