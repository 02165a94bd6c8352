// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieRecorder.h"

#include "tests/export/MovieProbe.h"

#include <gmock/gmock.h>

#include <functional>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

using std::chrono::milliseconds;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;
using Nanoseconds = MovieRecorder::Nanoseconds;

TEST(MovieSettings, tablesCountsAndEstimate) {
    EXPECT_EQ(movieRateTitle(0) + movieRateTitle(1) + movieRateTitle(2) + movieRateTitle(99), "24253030");
    EXPECT_EQ(movieLengthTitle(0) + " " + movieLengthTitle(54) + " " + movieLengthTitle(55), "3.0 30.0 30.0");
    EXPECT_EQ(fadeInLengthTitle(-1) + " " + fadeInLengthTitle(3) + " " + fadeInLengthTitle(38), "1.0 2.5 20.0");
    EXPECT_EQ((MovieSettings{0, 0, false, 0}).frameCount(), 72);
    EXPECT_EQ((MovieSettings{1, 1, false, 0}).frameCount(), 87);
    EXPECT_EQ((MovieSettings{7, 99, false, 0}).frameCount(), 900);
    EXPECT_FALSE((MovieSettings{0, 0, false, 5}).canCreate()) << "3.0 s with a fade-in of 3.5 s, even if it is off";
    EXPECT_TRUE((MovieSettings{0, 1, true, 5}).canCreate());
    const MovieSettings tenSeconds{2, 14, false, 0};
    EXPECT_EQ(megabytesText(tenSeconds.memoryBytes(640, 480, false)), "368.6");
    EXPECT_EQ(megabytesText(tenSeconds.memoryBytes(640, 480, true)), "737.3");
}

/// Answers at once with a small picture, unless told otherwise, and notes what it is asked.
class Host final : public RecordingHost {
public:
    void captureFrame(Nanoseconds moment) override {
        moments.push_back(moment);
        if (onCapture) {
            onCapture();
        } else {
            recorder.frameGiven(recorder.blankFrame(4, 4));
        }
    }

    void setLaunchBirth(double position) override { births.emplace_back(now, position); }

    void showProgress(const RecordingProgress& shown) override { progress = shown; }

    void writeMovie(std::unique_ptr<FrameStore> given) override { frames = std::move(given); }

    void recordingEnded(RecordingEnd end) override { ends.push_back(end); }

    void begin(const MovieSettings& settings, double birth, Nanoseconds time,
               std::unique_ptr<FrameStore> given = std::make_unique<FrameStore>()) {
        store = given.get();
        recorder.begin(settings, birth, time, std::move(given));
    }

    /// The clock is not the real one, so the store gets the time it needs.
    void tickAt(Nanoseconds time) {
        now = time;
        if (recorder.phase() == RecordingPhase::Recording) {
            store->waitUntilPacked();
        }
        recorder.tick(time);
    }

    /// From one time to another in steps.
    void run(milliseconds from, milliseconds to, Nanoseconds step) {
        for (Nanoseconds time = from; time <= to; time += step) {
            tickAt(time);
        }
    }

    Nanoseconds now{};
    std::vector<Nanoseconds> moments;
    std::vector<std::pair<Nanoseconds, double>> births;
    std::vector<RecordingEnd> ends;
    RecordingProgress progress;
    FrameStore* store = nullptr;
    std::unique_ptr<FrameStore> frames;
    std::function<void()> onCapture;
    MovieRecorder recorder{*this};
};

const MovieSettings shortest{2, 0, false, 0}; // 3 s at 30

TEST(MovieRecorder, lateTicksChangeNoMomentAndMissNothing) {
    Host host;
    for (const int rate : {2, 0, 1}) { // 30, then 24, then 25 in the same run
        const MovieSettings settings{rate, 0, false, 0};
        host.moments.clear();
        host.begin(settings, 5.0, milliseconds(700));
        std::mt19937 random(1);
        for (milliseconds time(700); host.recorder.phase() == RecordingPhase::Recording;) {
            host.tickAt(time);
            time += milliseconds(random() % 60);
        }
        ASSERT_THAT(host.moments, SizeIs(settings.frameCount()));
        for (std::size_t k = 0; k < host.moments.size(); ++k) {
            const auto due = 700e6 + 1e9 * static_cast<double>(k) / settings.framesPerSecond();
            EXPECT_NEAR(static_cast<double>(host.moments[k].count()), due, 1.0);
        }
        EXPECT_EQ(host.recorder.missed(), 0);
        EXPECT_EQ(host.progress.percentText, "100.0%");
        EXPECT_EQ(host.frames->count(), settings.frameCount());
        EXPECT_GE(host.now, milliseconds(4700)) << "writing starts a second after the end";
        EXPECT_LT(host.now, milliseconds(4760));
        host.recorder.writingEnded();
    }
    EXPECT_THAT(host.ends, SizeIs(3));
    EXPECT_THAT(host.births, SizeIs(3)) << "restored once for each";
}

TEST(MovieRecorder, slowMachineMissesFramesAndCountsThem) {
    Host host;
    host.begin(shortest, 5.0, Nanoseconds(0));
    host.run(milliseconds(0), milliseconds(4000), milliseconds(200));
    EXPECT_EQ(host.recorder.phase(), RecordingPhase::Writing);
    EXPECT_EQ(host.recorder.captured() + host.recorder.missed(), 90);
    EXPECT_EQ(host.frames->count(), host.recorder.captured());
    EXPECT_LT(host.recorder.captured(), 45);
    for (std::size_t i = 1; i < host.moments.size(); ++i) {
        EXPECT_GT(host.moments[i], host.moments[i - 1]);
    }
}

TEST(MovieRecorder, fadeInClimbsByTheClockAndIsRestored) {
    Host host;
    host.begin({2, 0, true, 2}, 5.0, Nanoseconds(0));
    host.run(milliseconds(0), milliseconds(4000), milliseconds(10));
    using Birth = std::pair<Nanoseconds, double>;
    EXPECT_THAT(host.births, ElementsAre(Birth{milliseconds(0), 1.0}, Birth{milliseconds(500), 1.0},
                                         Birth{milliseconds(1000), 2.0}, Birth{milliseconds(1500), 3.0},
                                         Birth{milliseconds(2000), 4.0}, Birth{milliseconds(2500), 5.0}));
    host.births.clear();
    host.recorder.writingProgress(45, 90, milliseconds(5000));
    EXPECT_EQ(host.progress.percentText, "50.0%");
    EXPECT_EQ(host.progress.left, milliseconds(1000));
    host.recorder.writingEnded();
    host.recorder.writingEnded();
    EXPECT_THAT(host.births, ElementsAre(Birth{milliseconds(4000), 5.0}));
    EXPECT_THAT(host.ends, ElementsAre(RecordingEnd::WritingEnded));
}

TEST(MovieRecorder, abortAtAnyMomentRestoresOnceAndStopsEverything) {
    for (const milliseconds moment :
         {milliseconds(0), milliseconds(700), milliseconds(2990), milliseconds(3500), milliseconds(4100)}) {
        SCOPED_TRACE(moment.count());
        Host host;
        host.begin(shortest, 7.5, Nanoseconds(0));
        host.run(milliseconds(0), moment, milliseconds(25));
        host.recorder.abort();
        host.recorder.abort();
        const auto asked = host.moments.size();
        host.run(moment, milliseconds(6000), milliseconds(25));
        host.recorder.frameGiven(ImageBuffer(4, 4));
        EXPECT_EQ(host.moments.size(), asked);
        ASSERT_THAT(host.births, SizeIs(1));
        EXPECT_EQ(host.births.front().second, 7.5);
        EXPECT_THAT(host.ends, ElementsAre(RecordingEnd::Aborted));
        EXPECT_EQ(host.frames != nullptr, moment > milliseconds(4000)) << "was handed over only for writing";
    }
}

TEST(MovieRecorder, endsEarlyWithWhatThereIs) {
    Host finished;
    finished.begin(shortest, 5.0, Nanoseconds(0));
    finished.run(milliseconds(0), milliseconds(980), milliseconds(20));
    finished.recorder.finish();
    EXPECT_EQ(finished.frames->count(), 30);

    Host full;
    full.begin(shortest, 5.0, Nanoseconds(0), std::make_unique<FrameStore>(10 * 64 * 64 * 4));
    full.onCapture = [&] { full.recorder.frameGiven(noise(64, 64, 1)); };
    full.run(milliseconds(0), milliseconds(2000), milliseconds(20));
    EXPECT_TRUE(full.recorder.ranOutOfMemory());
    EXPECT_EQ(full.recorder.phase(), RecordingPhase::Writing);
    EXPECT_EQ(full.recorder.missed(), 90 - full.recorder.captured());

    Host blind;
    blind.onCapture = [&] { blind.recorder.frameFailed(); };
    blind.begin(shortest, 5.0, Nanoseconds(0));
    blind.run(milliseconds(0), milliseconds(4000), milliseconds(20));
    EXPECT_THAT(blind.ends, ElementsAre(RecordingEnd::NoFrames));
    EXPECT_THAT(blind.births, SizeIs(1));
}

} // namespace

} // namespace starbloom
