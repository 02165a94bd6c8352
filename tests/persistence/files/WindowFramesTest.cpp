// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/WindowFrames.h"

#include <gmock/gmock.h>

#include <vector>

namespace starbloom {

void PrintTo(const Frame& frame, std::ostream* out) {
    *out << frame.x << ", " << frame.y << ", " << frame.width << " x " << frame.height;
}

namespace {

using Main = RestorePlan::Main;
using testing::ElementsAre;
using testing::Pair;

const Screen laptop{.full = {0, 0, 1920, 1080}, .visible = {0, 40, 1920, 1010}};
const Screen beamer{.full = {1920, 200, 1280, 720}, .visible = {1920, 200, 1280, 701}};
const std::vector<Screen> desktop{laptop, beamer};

const std::vector<std::string> saved{"800", "612.5", "-20", "30.25", "296", "559", "900", "100"};

TEST(WindowFrames, aWindowIsCentredOnTheVisiblePartOfTheLastScreen) {
    EXPECT_EQ(getScreensize(desktop, true), (Size{1280, 720}));
    EXPECT_EQ(getScreensize(desktop, false), (Size{1280, 701}));
    EXPECT_EQ(getScreensize({}, false), (Size{0, 0}));
    EXPECT_EQ(centredFrame({650, 589}, {1280, 701}), (Frame{315, 56, 650, 589}));
    EXPECT_EQ(centredFrame({651, 590}, {1280, 701}), (Frame{314.5, 55.5, 651, 590}));
    EXPECT_EQ(centredFrame({1300, 801}, {1280, 701}), (Frame{-10, -50, 1300, 801}));
}

TEST(WindowFrames, builtInPlacesHangBelowTheToolbarUntilAPlaceIsKnown) {
    const Frame window{100, 200, 800, 600};
    const auto sidebar = builtInSidebarFrame(window);
    EXPECT_EQ(sidebar, (Frame{604, 160, 296, 559}));
    EXPECT_EQ(window.y + window.height - (sidebar.y + sidebar.height), 81);
    const auto guide = builtInGuideFrame(window);
    EXPECT_EQ(guide, (Frame{100, 177, 450, 542}));
    EXPECT_EQ(window.y + window.height - (guide.y + guide.height), 81);

    WindowFrameMemory memory;
    EXPECT_EQ(memory.sidebarFrame(window), sidebar);
    memory.sidebar = {5, 6, 300, 0};
    EXPECT_EQ(memory.sidebarFrame(window), sidebar);
    memory.sidebar.height = 400;
    EXPECT_EQ(memory.sidebarFrame(window), (Frame{5, 6, 300, 400}));
    EXPECT_EQ(memory.guideFrame(window), guide);
}

TEST(WindowFrames, restoringFollowsTheCheckBoxes) {
    const auto plan = restoreFrames(true, saved, false, true);
    EXPECT_EQ(plan.main, Main::Apply);
    EXPECT_EQ(plan.mainFrame, (Frame{-20, 30.25, 800, 612.5}));
    EXPECT_EQ(plan.sidebarFrame, (Frame{900, 100, 296, 559}));
    EXPECT_FALSE(restoreFrames(true, saved, false, false).sidebarFrame);

    for (const bool sidebar : {false, true}) {
        EXPECT_EQ(restoreFrames(false, saved, false, sidebar).main, Main::Centre);
        EXPECT_EQ(restoreFrames(true, saved, true, sidebar).main, Main::Centre);
        EXPECT_FALSE(restoreFrames(true, saved, true, sidebar).sidebarFrame);
        auto first = saved;
        first[1] = "0";
        EXPECT_EQ(restoreFrames(true, first, false, sidebar).main, Main::CentreAndSave);
        EXPECT_FALSE(restoreFrames(true, first, false, sidebar).sidebarFrame);
        EXPECT_EQ(restoreFrames(true, first, true, sidebar).main, Main::Centre) << "the check box comes first";
    }
}

TEST(WindowFrames, textThatIsNoSizeCountsAsNothingSaved) {
    for (const auto* width : {"", "abc", "-800", "nan", "inf", "1e30", "40000"}) {
        auto values = saved;
        values[0] = width;
        EXPECT_EQ(restoreFrames(true, values, false, true).main, Main::CentreAndSave) << width;
    }
    EXPECT_EQ(restoreFrames(true, {}, false, true).main, Main::CentreAndSave);
    const std::span four(saved.data(), 4);
    EXPECT_EQ(restoreFrames(true, four, false, true).sidebarFrame, Frame{});
}

TEST(WindowFrames, rowsAreWrittenInOrderAndReadBackAsTheSameFrame) {
    const Frame frame{-20, 30.25, 800, 612.5};
    const auto rows = frameRows(2, frame);
    EXPECT_THAT(rows, ElementsAre(Pair("Width2", "800"), Pair("Height2", "612.5"), Pair("Left2", "-20"),
                                  Pair("Top2", "30.25")));
    std::vector<std::string> values;
    for (const auto& row : rows) {
        values.push_back(row.second);
    }
    EXPECT_EQ(restoreFrames(true, values, false, false).mainFrame, frame);
}

TEST(WindowFrames, flippingTwiceChangesNothing) {
    const Frame frame{-20, 30.25, 800, 612.5};
    EXPECT_EQ(flipped(frame, 1080), (Frame{-20, 437.25, 800, 612.5}));
    EXPECT_EQ(flipped(flipped(frame, 1080), 1080), frame);
}

TEST(WindowFrames, aFrameWithAnyTopEdgeOnAScreenStaysWhereItIs) {
    for (const auto& frame : {Frame{100, 100, 800, 600}, Frame{-799, 100, 800, 600}, Frame{3199, -500, 800, 720},
                              Frame{100, -599, 800, 600}, Frame{100, 480, 800, 600}}) {
        EXPECT_EQ(reachable(frame, desktop), frame);
    }
    EXPECT_EQ(reachable({9000, 9000, 800, 600}, {}), (Frame{9000, 9000, 800, 600}));
}

TEST(WindowFrames, aLostFrameIsMovedJustEnoughToBeGrabbed) {
    // Above the first screen: its top edge comes down to the top of what is visible.
    EXPECT_EQ(reachable({100, 900, 800, 600}, desktop), (Frame{100, 450, 800, 600}));
    // Left of it, right of the second one, below both.
    EXPECT_EQ(reachable({-900, 100, 800, 600}, desktop), (Frame{-736, 100, 800, 600}));
    EXPECT_EQ(reachable({4000, 100, 800, 600}, desktop), (Frame{3136, 100, 800, 600}));
    EXPECT_EQ(reachable({100, -700, 800, 600}, desktop), (Frame{100, -532, 800, 600}));
    // Without the second screen, a window that was on it comes back to the first.
    EXPECT_EQ(reachable({2000, 250, 800, 600}, std::span(&laptop, 1)), (Frame{1856, 250, 800, 600}));
    // A window narrower than the piece is brought in as a whole.
    EXPECT_EQ(reachable({5000, 300, 40, 100}, desktop), (Frame{3160, 300, 40, 100}));
}

} // namespace

} // namespace starbloom
