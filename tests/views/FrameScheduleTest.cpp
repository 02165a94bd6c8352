// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/FrameSchedule.h"

#include <gtest/gtest.h>

#include <limits>

namespace starbloom {

namespace {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

constexpr nanoseconds start = 123'456'789'012ns;

TEST(FrameSchedule, FramesAreDueAtMultiplesOfThePeriodHoweverLateTheTimerWakes) {
    FrameSchedule schedule;
    schedule.start(start, 100.0);
    EXPECT_EQ(schedule.takeDueFrame(start), start);
    EXPECT_EQ(schedule.takeDueFrame(start), std::nullopt);
    nanoseconds now = start;
    for (int frame = 1; frame <= 1000; ++frame) {
        now += schedule.untilNextFrame(now);
        EXPECT_EQ(schedule.takeDueFrame(now - 1ns), std::nullopt) << frame;
        now += (frame * 7919) % 9'900'000 * 1ns;
        EXPECT_EQ(schedule.takeDueFrame(now), start + frame * 10ms);
    }
}

TEST(FrameSchedule, AWaitForTheNextFrameAlwaysEndsAtOne) {
    // Periods that are no whole nanoseconds, after minutes and after days: no drift, none left out, none early.
    for (const double rate : {59.94, 60.0, 75.025, 143.9, 165.0, 240.0}) {
        for (const nanoseconds pause : {nanoseconds(0), nanoseconds(7min), nanoseconds(240h)}) {
            FrameSchedule schedule;
            schedule.start(start, rate);
            nanoseconds now = start + pause;
            const auto first = schedule.takeDueFrame(now);
            ASSERT_TRUE(first.has_value());
            constexpr int frames = 5000;
            for (int frame = 1; frame <= frames; ++frame) {
                now += schedule.untilNextFrame(now);
                ASSERT_EQ(schedule.takeDueFrame(now), now) << rate << " frame " << frame;
            }
            EXPECT_NEAR(static_cast<double>((now - *first).count()), frames / rate * 1.0e9, 2.0) << rate;
        }
    }
}

TEST(FrameSchedule, MissedFramesAreLeftOut) {
    FrameSchedule schedule;
    schedule.start(start, 50.0);
    ASSERT_TRUE(schedule.takeDueFrame(start));
    EXPECT_EQ(schedule.untilNextFrame(start + 8760h), 0ns);
    EXPECT_EQ(schedule.takeDueFrame(start + 8760h + 33ms), start + 8760h + 20ms);
    EXPECT_EQ(schedule.takeDueFrame(start + 8760h + 33ms), std::nullopt);
    EXPECT_EQ(schedule.untilNextFrame(start + 8760h + 33ms), 7ms);
}

TEST(FrameSchedule, ARateThatNoDisplayHasFallsBack) {
    for (const double rate : {0.0, -60.0, 0.1, 1.0e6, std::numeric_limits<double>::quiet_NaN()}) {
        FrameSchedule schedule;
        schedule.start(start, rate);
        ASSERT_TRUE(schedule.takeDueFrame(start));
        EXPECT_EQ(schedule.untilNextFrame(start), 16'666'667ns) << rate;
    }
}

} // namespace

} // namespace starbloom
