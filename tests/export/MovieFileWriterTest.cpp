// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieFileWriter.h"

#include "engine/raster/RasterRenderer.h"
#include "export/movie/MovieRecovery.h"
#include "export/movie/MovieWriter.h"
#include "tests/engine/Scenes.h"
#include "tests/export/MovieProbe.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <future>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace starbloom {

namespace {

using testing::HasSubstr;

/// Black with one bright square of 16 x 16, whose left edge lies at `x`.
ImageBuffer squareAt(int x, int width = 320, int height = 32) {
    ImageBuffer image(width, height);
    for (int y = 8; y < 24; ++y) {
        std::fill_n(image.row(y) + x * ImageBuffer::channels, 16 * ImageBuffer::channels, std::uint8_t{255});
    }
    return image;
}

std::unique_ptr<FrameStore> storeOf(const std::vector<ImageBuffer>& frames) {
    auto store = std::make_unique<FrameStore>();
    for (const ImageBuffer& frame : frames) {
        while (store->add(ImageBuffer(frame)) == FrameStore::Added::Busy) {
            ::usleep(100);
        }
    }
    return store;
}

std::vector<ImageBuffer> noises(unsigned count) {
    std::vector<ImageBuffer> frames;
    for (unsigned i = 0; i < count; ++i) {
        frames.push_back(noise(48, 32, i));
    }
    return frames;
}

class MovieFile : public testing::Test {
protected:
    using Outcome = Result<std::optional<WrittenMovie>>;

    /// Writes to the end; `onProgress` may use m_writer.
    Outcome write(const std::vector<ImageBuffer>& frames, int rate = 30,
                  std::function<void(std::int64_t)> onProgress = {}) {
        Outcome outcome = std::optional<WrittenMovie>();
        std::promise<void> ready;
        auto started = ready.get_future().share();
        const auto progress = [&](std::int64_t written, std::int64_t) {
            started.wait();
            if (onProgress) {
                onProgress(written);
            }
        };
        m_writer.emplace(MovieJob{target, journal, rate, storeOf(frames)}, progress,
                         [&](const Outcome& result) { outcome = result; });
        ready.set_value();
        m_writer->wait();
        return outcome;
    }

    int leftovers() const { return folder.entryCount(); }

    TemporaryFolder folder;
    std::filesystem::path target = folder / "show.m4v";
    std::filesystem::path journal = folder / "journal";
    std::optional<MovieFileWriter> m_writer;
};

TEST_F(MovieFile, showFramesComeBackNearlyUnchanged) {
    Simulation simulation(1, panelPlan());
    RasterRenderer renderer;
    std::vector<ImageBuffer> frames;
    std::ofstream raw(folder / "raw", std::ios::binary);
    for (int k = 0; k < 75; ++k) {
        simulation.advanceTo(4.0 + k / 25.0);
        ImageBuffer& frame = frames.emplace_back(640, 480);
        renderer.render(simulation.sparks(), {simulation.time()}, RasterTarget::of(frame));
        raw.write(reinterpret_cast<const char*>(frame.bytes().data()),
                  static_cast<std::streamsize>(frame.bytes().size()));
    }
    raw.close();
    std::int64_t last = 0;
    const auto outcome = write(frames, 25, [&](std::int64_t written) {
        EXPECT_GE(written, last);
        last = written;
        EXPECT_FALSE(findInterruptedMovie(journal)) << "it is not interrupted";
    });
    ASSERT_TRUE(outcome) << outcome.error().message;
    ASSERT_TRUE(outcome.value());
    EXPECT_EQ(outcome.value()->frames, 75);
    EXPECT_EQ(outcome.value()->seconds, 3.0);
    EXPECT_EQ(last, 75);
    EXPECT_EQ(leftovers(), 2);
    auto facts = probe(target);
    EXPECT_EQ(facts["nb_frames"] + " " + facts["avg_frame_rate"] + " " + facts["duration"],
              "75 25/1 3.000000/3.000000");
    EXPECT_EQ(facts["width"] + "x" + facts["height"] + facts["color_space"], "640x480smpte170m");
    const std::string report = outputOf(
        "ffmpeg -nostdin -hide_banner -i '" + target.string() + "' -f rawvideo -pix_fmt rgba -s 640x480 -r 25 -i '" +
        (folder / "raw").string() + "' -lavfi '[1]format=yuv420p[a];[0][a]ssim' -f null - 2>&1");
    const auto all = report.rfind("All:");
    ASSERT_NE(all, std::string::npos) << report;
    EXPECT_GE(std::stod(report.substr(all + 4)), 0.98);
}

TEST_F(MovieFile, movesAtTheTrueSpeedAtEveryRate) {
    constexpr double pixelsPerSecond = 80.0;
    for (const int rate : {30, 24, 25}) {
        std::vector<ImageBuffer> frames;
        for (int k = 0; k < 3 * rate; ++k) {
            frames.push_back(squareAt(static_cast<int>(pixelsPerSecond * k / rate)));
        }
        ASSERT_TRUE(write(frames, rate));
        EXPECT_EQ(probe(target)["duration"], "3.000000/3.000000");
        const std::string rgb = decode(target);
        ASSERT_EQ(rgb.size(), frames.size() * 320 * 32 * 3);
        for (const int second : {0, 1, 2}) {
            const std::size_t row = (static_cast<std::size_t>(second * rate) * 32 + 16) * 320;
            std::size_t x = 0;
            while (x < 320 && sampleAt(rgb, (row + x) * 3) < 128) {
                ++x;
            }
            EXPECT_NEAR(static_cast<double>(x), pixelsPerSecond * second, 1.0) << rate;
        }
    }
}

TEST_F(MovieFile, sameBytesEachTimeWhateverTheSizeOfLaterFrames) {
    auto frames = noises(20);
    ASSERT_TRUE(write(frames));
    const std::string first = readFile(target);
    ASSERT_TRUE(write(frames));
    EXPECT_TRUE(readFile(target) == first);

    frames[5] = noise(100, 7, 1);
    ASSERT_TRUE(write(frames));
    EXPECT_EQ(probe(target)["nb_frames"], "20");
    EXPECT_EQ(probe(target)["width"], "48");
}

TEST_F(MovieFile, abortAndEarlyEnd) {
    const auto frames = noises(72);
    std::ofstream(target) << "old";
    for (const std::int64_t moment : {1, 5, 30, 71, 72}) {
        const auto outcome = write(frames, 24, [&](std::int64_t written) {
            if (written >= moment) {
                m_writer->abort();
            }
        });
        ASSERT_TRUE(outcome) << outcome.error().message;
        EXPECT_FALSE(outcome.value());
        EXPECT_EQ(readFile(target), "old");
        EXPECT_EQ(leftovers(), 1);
    }
    const auto early = write(frames, 24, [&](std::int64_t) { m_writer->finishEarly(); });
    ASSERT_TRUE(early && early.value());
    EXPECT_LT(early.value()->frames, 72);
    EXPECT_EQ(probe(target)["nb_frames"], std::to_string(early.value()->frames));
}

TEST_F(MovieFile, failuresHaveReasonsAndLeaveNothing) {
    const auto frames = noises(72);
    ASSERT_TRUE(write(frames));
    const auto size = std::filesystem::file_size(target);
    std::filesystem::remove(target);
    for (const auto limit : {std::uintmax_t{0}, size / 3, size - 1}) {
        const FileSizeLimit limited(limit);
        const auto full = write(frames);
        ASSERT_FALSE(full);
        EXPECT_THAT(full.error().message, HasSubstr("show.m4v: " + std::string(std::strerror(EFBIG))));
        EXPECT_EQ(leftovers(), 0);
    }
    const auto refused = write({ImageBuffer(16385, 1)});
    ASSERT_FALSE(refused);
    EXPECT_THAT(refused.error().message, HasSubstr("1 to 16384"));
    EXPECT_FALSE(write({}));

    std::filesystem::create_directory(folder / "gone");
    target = folder / "gone" / "show.m4v";
    const auto vanished = write(frames, 30, [&](std::int64_t) { std::filesystem::remove_all(folder / "gone"); });
    ASSERT_FALSE(vanished);
    EXPECT_THAT(vanished.error().message, HasSubstr("No such file"));
    EXPECT_FALSE(write(frames));
    EXPECT_EQ(leftovers(), 0);
}

class KilledMovie : public MovieFile {
protected:
    /// Writes in another process and kills it while it stands still after so many frames; beyond all of them: while the
    /// finished movie is copied.
    void killAt(int calls, unsigned frames) {
        int steps[2];
        ASSERT_EQ(::pipe(steps), 0);
        const pid_t process = ::fork();
        if (process == 0) {
            int call = 0;
            (void)write(noises(frames), 24, [&](std::int64_t) {
                if (++call == calls) {
                    [[maybe_unused]] const auto told = ::write(steps[1], "x", 1);
                    ::pause();
                }
            });
            ::_exit(1);
        }
        char answer = 0;
        EXPECT_EQ(::read(steps[0], &answer, 1), 1);
        ::kill(process, SIGKILL);
        int status = 0;
        ::waitpid(process, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        ::close(steps[0]);
        ::close(steps[1]);
    }
};

TEST_F(KilledMovie, isRecoveredUpToTheKill) {
    constexpr int frames = 72;
    std::ofstream(folder / "show (recovered).m4v") << "somebody else's";
    int number = 2;
    for (const int calls : {1, 9, 30, 72, 100}) {
        SCOPED_TRACE(calls);
        killAt(calls, frames);
        EXPECT_FALSE(std::filesystem::exists(target));
        const auto found = findInterruptedMovie(journal);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->target, target);
        const auto recovered = recoverMovie(*found);
        ASSERT_TRUE(recovered) << recovered.error().message;
        EXPECT_EQ(recovered.value().path, folder / ("show (recovered " + std::to_string(number++) + ").m4v"));
        // What is missing waited for a frame that is shown before it.
        EXPECT_LE(recovered.value().frames, std::min(calls, frames));
        EXPECT_GE(recovered.value().frames, std::min(calls, frames) - 3);
        auto facts = probe(recovered.value().path);
        EXPECT_EQ(facts["nb_frames"], std::to_string(recovered.value().frames));
        EXPECT_EQ(facts["avg_frame_rate"], "24/1");
        EXPECT_EQ(decode(recovered.value().path).size(), recovered.value().frames * 48U * 32U * 3U);
        EXPECT_FALSE(findInterruptedMovie(journal));
        EXPECT_EQ(leftovers(), number - 1);
    }
    EXPECT_EQ(readFile(folder / "show (recovered).m4v"), "somebody else's");
}

TEST_F(KilledMovie, leavesJournalsAsTheDocumentDescribesThem) {
    std::filesystem::create_directory(folder / "kept");
    journal = folder / "kept" / "Recording";
    killAt(2, 10);
    killAt(2, 10);
    const std::string command = "python3 '" STARBLOOM_SOURCES "/tests/documents/read_application_folder.py' '" +
                                (folder / "kept").string() + "' >'" + (folder / "read").string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string movie = R"({"target": ")" + target.string() + R"(", "rate": 24})";
    EXPECT_EQ(readFile(folder / "read"), R"({"Recording": )" + movie + R"(, "Recording.1": )" + movie + "}\n");
}

TEST_F(KilledMovie, isRecoveredFromACutFileAndBesideAnother) {
    killAt(60, 72);
    killAt(20, 72);
    const auto first = findInterruptedMovie(journal);
    ASSERT_TRUE(first);
    std::filesystem::resize_file(first->part, std::filesystem::file_size(first->part) - 1000);
    const auto recovered = recoverMovie(*first);
    ASSERT_TRUE(recovered) << recovered.error().message;
    EXPECT_GE(recovered.value().frames, 50);
    EXPECT_EQ(decode(recovered.value().path).size(), recovered.value().frames * 48U * 32U * 3U);

    const auto second = findInterruptedMovie(journal);
    ASSERT_TRUE(second);
    // Renamed over the target just before the kill: saved after all.
    std::filesystem::rename(second->pending, target);
    EXPECT_FALSE(findInterruptedMovie(journal));
    EXPECT_EQ(leftovers(), 2);
}

TEST_F(KilledMovie, isForgottenOnlyWhenItsFilesAreGone) {
    killAt(9, 72);
    const auto found = findInterruptedMovie(journal);
    ASSERT_TRUE(found);
    std::filesystem::remove(found->pending);
    std::filesystem::create_directory(found->pending); // Stands in for a file that may not be removed.
    const auto discarded = discardInterruptedMovie(*found);
    ASSERT_FALSE(discarded);
    EXPECT_THAT(discarded.error().message, HasSubstr("cannot remove " + found->pending.string()));
    EXPECT_TRUE(std::filesystem::exists(journal));
    std::filesystem::remove(found->pending);
    EXPECT_TRUE(discardInterruptedMovie(*found));
    EXPECT_EQ(leftovers(), 0);

    // A movie that is given up, and cannot be removed then, is named to the next run.
    std::ofstream(found->part) << "frames";
    { EXPECT_TRUE(MovieJournal::begin(*found)); }
    EXPECT_EQ(leftovers(), 2);
    std::filesystem::remove(journal);
    std::filesystem::remove(found->part);
    { EXPECT_TRUE(MovieJournal::begin(*found)); }
    EXPECT_EQ(leftovers(), 0);
}

TEST_F(MovieFile, journalCannotNameWhatIsNotOurs) {
    const auto precious = folder / "precious";
    std::ofstream(precious) << "data";
    for (const std::string& part : {precious.string(), (folder / "sub/.starbloom.1-0.part").string()}) {
        std::string text = "starbloom movie 1";
        for (const std::string& field : {target.string(), part, part, std::string("30")}) {
            text += '\0' + field;
        }
        std::ofstream(journal) << text << '\0';
        EXPECT_FALSE(findInterruptedMovie(journal));
    }
    EXPECT_EQ(readFile(precious), "data");
    EXPECT_EQ(leftovers(), 1);
}

} // namespace

} // namespace starbloom
