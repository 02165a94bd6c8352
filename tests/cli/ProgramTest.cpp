// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <png.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <map>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
};

/// Runs the program as a shell would.
class Program : public testing::Test {
protected:
    Outcome run(const std::string& arguments, const std::string& before = "") {
        const std::string out = folder / ".out";
        const std::string err = folder / ".err";
        const std::string command = "cd '" + folder.path().string() + "' && " + before + " " STARBLOOM_RENDER " " +
                                    arguments + " >" + out + " 2>" + err;
        const int raw = std::system(command.c_str());
        Outcome outcome{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(out), readFile(err)};
        std::filesystem::remove(out);
        std::filesystem::remove(err);
        return outcome;
    }

    std::string probe(const std::string& file, const std::string& fields) {
        const std::string out = folder / ".probe";
        const std::string command = "ffprobe -v error -select_streams v -count_frames -show_entries stream=" + fields +
                                    " -of default=noprint_wrappers=1 '" + (folder / file).string() + "' >" + out;
        EXPECT_EQ(std::system(command.c_str()), 0);
        std::string text = readFile(out);
        std::filesystem::remove(out);
        return text;
    }

    TemporaryFolder folder;
};

TEST_F(Program, APictureIsAPngOfTheAskedSizeWithAShowInIt) {
    const Outcome outcome = run("--size 320x200 --at 5 --background 204060 a.png");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_file(&image, (folder / "a.png").c_str()), 0);
    EXPECT_EQ(image.width, 320U);
    EXPECT_EQ(image.height, 200U);
    image.format = PNG_FORMAT_RGB;
    std::string pixels(PNG_IMAGE_SIZE(image), '\0');
    ASSERT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
    std::map<std::string, int> colours;
    for (std::size_t i = 0; i < pixels.size(); i += 3) {
        ++colours[pixels.substr(i, 3)];
    }
    EXPECT_GT(colours[std::string("\x20\x40\x60")], 5000);
    EXPECT_GT(colours.size(), 300U);
}

TEST_F(Program, ThreadsChangeNoByteAndSeedsChangeTheShow) {
    for (const char* threads : {"1", "2", "8"}) {
        ASSERT_EQ(run(std::string("--at 7 --threads ") + threads + " t" + threads + ".png").status, 0);
    }
    ASSERT_EQ(run("--at 7 --seed 2 other.png").status, 0);
    const std::string one = readFile(folder / "t1.png");
    EXPECT_GT(one.size(), 1000U);
    EXPECT_EQ(readFile(folder / "t2.png"), one);
    EXPECT_EQ(readFile(folder / "t8.png"), one);
    EXPECT_NE(readFile(folder / "other.png"), one);
}

TEST_F(Program, TheEndingPicksTheKindOfPicture) {
    const std::pair<const char*, const char*> cases[] = {
        {"bmp", "BM"},      {"gif", "GIF8"}, {"jpg", "\xFF\xD8"}, {"JPEG", "\xFF\xD8"},
        {"png", "\x89PNG"}, {"tif", "II*"},  {"tiff", "II*"},     {"jp2", "\r\n\x87\n"},
    };
    for (const auto& [ending, magic] : cases) {
        ASSERT_EQ(run(std::string("--at 6 --size 64x48 a.") + ending).status, 0) << ending;
        EXPECT_THAT(readFile(folder / (std::string("a.") + ending)).substr(0, 12), HasSubstr(magic)) << ending;
    }
    ASSERT_EQ(run("--from 4 --seconds 0.1 --quality 40 f%d.jpg").status, 0);
    ASSERT_EQ(run("--at 4 --quality 40 still.jpg").status, 0);
    EXPECT_EQ(readFile(folder / "f0.jpg"), readFile(folder / "still.jpg"));
    ASSERT_EQ(run("--at 4 still.jpg").status, 0);
    EXPECT_NE(readFile(folder / "f0.jpg"), readFile(folder / "still.jpg"));
}

TEST_F(Program, LikeAPictureIsTheVeryShowAgain) {
    const std::string show = "--seed 9 --at 6.7 --size 300x200 --background 102030 --set rocketVelocitySlider=333 "
                             "--set animateSpeedSlider=150 ";
    ASSERT_EQ(run(show + "a.png").status, 0);
    const std::string original = readFile(folder / "a.png");
    for (const char* ending : {"png", "jpg", "jp2", "tif", "gif"}) {
        ASSERT_EQ(run(show + "a." + ending).status, 0);
        EXPECT_EQ(run(std::string("--like a.") + ending + " again.png").status, 0);
        EXPECT_EQ(readFile(folder / "again.png"), original) << ending;
    }
    // Larger and back again; what is given besides counts more.
    ASSERT_EQ(run("--like a.gif --size 1000x400 wide.png").status, 0);
    ASSERT_EQ(run("--like wide.png --size 500x200 half.png").status, 0);
    ASSERT_EQ(run("--like a.png --size 500x200 --threads 1 direct.png").status, 0);
    EXPECT_EQ(readFile(folder / "half.png"), readFile(folder / "direct.png"));
    ASSERT_EQ(run("--like a.png --seed 10 c.png").status, 0);
    EXPECT_NE(readFile(folder / "c.png"), original);

    ASSERT_EQ(run(show + "--fade-in 2 climb.png").status, 0);
    const Outcome climb = run("--like climb.png again.png");
    EXPECT_EQ(climb.status, 0);
    EXPECT_THAT(climb.err, HasSubstr("cannot be the very same"));
    ASSERT_EQ(run("a.bmp").status, 0);
    EXPECT_THAT(run("--like a.bmp again.png").err, HasSubstr("a.bmp: it does not tell of a show"));
}

TEST_F(Program, AMovieHasTheAskedSizeRateAndLength) {
    ASSERT_EQ(run("--size 321x240 --fps 25 --seconds 1.5 --from 4 --quiet a.m4v").status, 0);
    const std::string found = probe("a.m4v", "codec_name,width,height,avg_frame_rate,nb_read_frames,color_space");
    EXPECT_EQ(found, "codec_name=h264\nwidth=322\nheight=240\ncolor_space=smpte170m\navg_frame_rate=25/1\n"
                     "nb_read_frames=37\n");
}

TEST_F(Program, AFailedWriteLeavesNoFileAndStatusOne) {
    const struct {
        const char* limit; // Blocks of 1024 bytes.
        const char* arguments;
    } cases[] = {{"ulimit -f 8;", "--at 5 a.png"}, {"ulimit -f 8;", "--from 4 --seconds 2 a.m4v"}};

    for (const auto& each : cases) {
        const Outcome outcome = run(each.arguments, each.limit);
        EXPECT_EQ(outcome.status, 1) << each.arguments;
        EXPECT_THAT(outcome.err, HasSubstr("File too large")) << each.arguments;
        EXPECT_EQ(folder.entryCount(), 0) << each.arguments;
    }
    const int raw = std::system(STARBLOOM_RENDER " --particles >/dev/full 2>/dev/null");
    EXPECT_EQ(WEXITSTATUS(raw), 1);
}

TEST_F(Program, AnOlderFileStaysWhenItsReplacementFails) {
    ASSERT_EQ(run("--at 1 a.png").status, 0);
    const std::string before = readFile(folder / "a.png");
    EXPECT_EQ(run("--at 5 a.png", "ulimit -f 8;").status, 1);
    EXPECT_EQ(readFile(folder / "a.png"), before);
    EXPECT_EQ(folder.entryCount(), 1);
}

TEST_F(Program, InterruptionRemovesWhatIsUnfinished) {
    for (const char* output : {"a.m4v", "a.webm", "a.apng"}) {
        const pid_t child = ::fork();
        if (child == 0) {
            const int nowhere = ::open("/dev/null", O_WRONLY);
            ::dup2(nowhere, STDERR_FILENO);
            ::execl(STARBLOOM_RENDER, STARBLOOM_RENDER, "--seconds", "100000", (folder / output).c_str(), nullptr);
            ::_exit(99);
        }
        // The hidden file appears when the work has begun.
        while (folder.entryCount() == 0 && ::waitpid(child, nullptr, WNOHANG) == 0) {
            std::this_thread::yield();
        }
        ::kill(child, SIGINT);
        int raw = 0;
        ASSERT_EQ(::waitpid(child, &raw, 0), child);
        EXPECT_TRUE(WIFEXITED(raw));
        EXPECT_EQ(WEXITSTATUS(raw), 130) << output;
        EXPECT_EQ(folder.entryCount(), 0) << output;
    }
}

TEST_F(Program, TheParticleTableFollowsEachParticle) {
    const auto table = [&](const std::string& at) {
        std::map<std::string, std::vector<double>> rows; // By cell and birth.
        std::istringstream text(run("--particles --at " + at).out);
        std::string line;
        std::getline(text, line);
        EXPECT_EQ(line, "cell,birth,age,x,y,scale,rotation,r,g,b,a");
        while (std::getline(text, line)) {
            const auto second = line.find(',', line.find(',') + 1);
            std::istringstream numbers(line.substr(second + 1));
            std::string number;
            auto& row = rows[line.substr(0, second)];
            while (std::getline(numbers, number, ',')) {
                row.push_back(std::stod(number));
            }
            EXPECT_EQ(row.size(), 9U);
        }
        return rows;
    };
    const auto earlier = table("5");
    const auto later = table("5.1");
    EXPECT_GT(earlier.size(), 500U);
    int followed = 0;
    for (const auto& [particle, row] : earlier) {
        const auto again = later.find(particle);
        if (again == later.end() || !particle.starts_with("firework")) {
            continue;
        }
        ++followed;
        EXPECT_NEAR(again->second[0] - row[0], 0.1, 1e-5);    // age
        EXPECT_NEAR(again->second[3] - row[3], -0.01, 1e-5);  // scale
        EXPECT_LT(std::abs(again->second[1] - row[1]), 13.1); // x, at up to 130 points a second
        EXPECT_EQ(again->second[5], row[5]);                  // red does not change
    }
    EXPECT_GT(followed, 400);
}

} // namespace

} // namespace starbloom
