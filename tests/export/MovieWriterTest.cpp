// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieWriter.h"

#include "base/Log.h"
#include "tests/export/MovieProbe.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

extern "C" {
#include <libavutil/log.h>
}

namespace starbloom {

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

struct Rgb {
    int red;
    int green;
    int blue;
};

void fill(ImageBuffer& image, int left, int width, Rgb color) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = left; x < left + width; ++x) {
            std::uint8_t* pixel = image.row(y) + x * ImageBuffer::channels;
            pixel[0] = static_cast<std::uint8_t>(color.red);
            pixel[1] = static_cast<std::uint8_t>(color.green);
            pixel[2] = static_cast<std::uint8_t>(color.blue);
        }
    }
}

ImageBuffer plain(int width, int height, int grey) {
    ImageBuffer image(width, height);
    fill(image, 0, width, {grey, grey, grey});
    return image;
}

/// The writer on its way to an error or to the end; stops at the first error.
Result<void> writeMovie(const std::filesystem::path& target, const std::vector<ImageBuffer>& frames,
                        int framesPerSecond = 30, bool survivesKill = false) {
    auto writer = MovieWriter::create(target,
                                      {.width = frames.front().width(),
                                       .height = frames.front().height(),
                                       .framesPerSecond = framesPerSecond,
                                       .threads = 2},
                                      {.survivesKill = survivesKill, .frameWritten = {}});
    if (!writer) {
        return writer.error();
    }
    for (const ImageBuffer& frame : frames) {
        if (auto added = writer.value().addFrame(frame); !added) {
            return added;
        }
    }
    return writer.value().finish();
}

TEST(MovieWriter, containsExactlyWhatItWasGiven) {
    const TemporaryFolder folder;
    const std::vector<int> greys{0, 40, 80, 120, 160, 200, 240};
    std::vector<ImageBuffer> frames;
    for (const int grey : greys) {
        frames.push_back(plain(64, 48, grey));
    }
    const auto movie = folder / "show.m4v";
    const auto written = writeMovie(movie, frames);
    ASSERT_TRUE(written) << written.error().message;

    auto facts = probe(movie);
    EXPECT_EQ(facts["codec_name"], "h264");
    EXPECT_EQ(facts["pix_fmt"], "yuv420p");
    EXPECT_EQ(facts["width"] + " x " + facts["height"], "64 x 48");
    EXPECT_EQ(facts["r_frame_rate"], "30/1");
    EXPECT_EQ(facts["avg_frame_rate"], "30/1");
    EXPECT_EQ(facts["nb_frames"], "7");
    EXPECT_EQ(facts["start_time"], "0.000000");
    EXPECT_EQ(facts["duration"], "0.233333/0.233333");
    EXPECT_THAT(facts["format_name"], HasSubstr("mp4"));

    const std::string rgb = decode(movie);
    const std::size_t frameSize = 64 * 48 * 3;
    ASSERT_EQ(rgb.size(), greys.size() * frameSize);
    for (std::size_t frame = 0; frame < greys.size(); ++frame) {
        // Far less than the distance between frames: none is lost, doubled or out of order.
        EXPECT_NEAR(sampleAt(rgb, frame * frameSize + frameSize / 2), greys[frame], 3) << "frame " << frame;
    }
}

TEST(MovieWriter, lengthIsExactAtEveryRate) {
    struct Case {
        int rate;
        std::size_t frames;
        std::string duration;
    };

    const TemporaryFolder folder;
    for (const auto& [rate, frames, duration] :
         {Case{1, 3, "3.000000"}, {7, 1, "0.142857"}, {60, 5, "0.083333"}, {1000, 3, "0.003000"}}) {
        const auto movie = folder / "show.mp4";
        ASSERT_TRUE(writeMovie(movie, std::vector(frames, plain(16, 16, 90)), rate));
        auto facts = probe(movie);
        EXPECT_EQ(facts["duration"], duration + "/" + duration);
        EXPECT_EQ(facts["avg_frame_rate"], std::to_string(rate) + "/1");
    }
}

TEST(MovieWriter, indexComesBeforeThePictures) {
    const TemporaryFolder folder;
    ASSERT_TRUE(writeMovie(folder / "show.mp4", {5, plain(32, 32, 10)}));
    const std::string bytes = readFile(folder / "show.mp4");
    std::vector<std::string> boxes;
    for (std::size_t at = 0; at + 8 <= bytes.size();) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            length = length * 256 + static_cast<std::uint8_t>(bytes[at + i]);
        }
        boxes.push_back(bytes.substr(at + 4, 4));
        at += std::max<std::size_t>(length, 8);
    }
    EXPECT_THAT(boxes, ElementsAre("ftyp", "moov", "free", "mdat"));
}

TEST(MovieWriter, coloursSurviveAndAreTagged) {
    const TemporaryFolder folder;
    const std::vector<Rgb> colors{{255, 255, 255}, {255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {200, 120, 30}, {12, 10, 20}};
    for (const auto& [height, tag] : {std::pair{718, "smpte170m"}, {720, "bt709"}}) {
        ImageBuffer stripes(static_cast<int>(colors.size()) * 32, height);
        for (std::size_t i = 0; i < colors.size(); ++i) {
            fill(stripes, static_cast<int>(i) * 32, 32, colors[i]);
        }
        const auto movie = folder / "show.mp4";
        ASSERT_TRUE(writeMovie(movie, {2, stripes}));
        auto facts = probe(movie);
        EXPECT_EQ(facts["color_range"], "tv");
        EXPECT_EQ(facts["color_space"], tag);
        EXPECT_EQ(facts["color_transfer"], tag);
        EXPECT_EQ(facts["color_primaries"], tag);

        const std::string rgb = decode(movie);
        ASSERT_EQ(rgb.size(), stripes.bytes().size() / 4 * 3 * 2);
        for (std::size_t i = 0; i < colors.size(); ++i) {
            const std::size_t at = (static_cast<std::size_t>(stripes.width()) * (height / 2) + i * 32 + 16) * 3;
            // Rounding to limited range and the encoder's own loss; the wrong matrix or range is off by 10 and more.
            EXPECT_NEAR(sampleAt(rgb, at), colors[i].red, 4) << "colour " << i << " at height " << height;
            EXPECT_NEAR(sampleAt(rgb, at + 1), colors[i].green, 4) << "colour " << i << " at height " << height;
            EXPECT_NEAR(sampleAt(rgb, at + 2), colors[i].blue, 4) << "colour " << i << " at height " << height;
        }
    }
}

TEST(MovieWriter, oddSizesGetABlackColumnAndRow) {
    const TemporaryFolder folder;
    ASSERT_TRUE(writeMovie(folder / "odd.mp4", {2, plain(63, 47, 255)}));
    auto facts = probe(folder / "odd.mp4");
    EXPECT_EQ(facts["width"] + " x " + facts["height"], "64 x 48");
    const std::string rgb = decode(folder / "odd.mp4");
    const auto greyAt = [&](std::size_t x, std::size_t y) { return sampleAt(rgb, (y * 64 + x) * 3 + 1); };
    // The encoder blurs so sharp an edge a little.
    for (const auto& [x, y, grey] : {std::array{63, 20, 0}, {62, 20, 255}, {20, 47, 0}, {20, 46, 255}, {63, 47, 0}}) {
        EXPECT_NEAR(greyAt(x, y), grey, 24) << x << ", " << y;
    }
    ASSERT_TRUE(writeMovie(folder / "dot.mp4", {plain(1, 1, 255)}));
    EXPECT_EQ(probe(folder / "dot.mp4")["width"], "2");
}

TEST(MovieWriter, sameFramesGiveTheSameBytes) {
    const TemporaryFolder folder;
    std::vector<ImageBuffer> frames;
    for (unsigned seed = 0; seed < 40; ++seed) {
        frames.push_back(noise(361, 226, seed));
    }
    ASSERT_TRUE(writeMovie(folder / "a.mp4", frames));
    ASSERT_TRUE(writeMovie(folder / "b.mp4", frames));
    ASSERT_TRUE(writeMovie(folder / "c.mp4", frames, 30, true));
    EXPECT_TRUE(readFile(folder / "a.mp4") == readFile(folder / "b.mp4"));
    EXPECT_TRUE(readFile(folder / "a.mp4") == readFile(folder / "c.mp4")) << "by the way of a fragmented file";
    EXPECT_EQ(folder.entryCount(), 3);
}

TEST(MovieWriter, targetChangesOnlyWhenFinished) {
    const TemporaryFolder folder;
    const auto target = folder / "show.mp4";
    std::ofstream(target) << "old";
    {
        auto writer = MovieWriter::create(target, {.width = 32, .height = 32, .framesPerSecond = 30});
        ASSERT_TRUE(writer);
        for (int frame = 0; frame < 80; ++frame) {
            ASSERT_TRUE(writer.value().addFrame(noise(32, 32, static_cast<unsigned>(frame))));
        }
        EXPECT_EQ(readFile(target), "old");
    }
    EXPECT_EQ(readFile(target), "old");
    EXPECT_EQ(folder.entryCount(), 1);

    auto first = MovieWriter::create(target, {.width = 32, .height = 32, .framesPerSecond = 30});
    MovieWriter writer = std::move(first).value();
    ASSERT_TRUE(writer.addFrame(plain(32, 32, 50)));
    EXPECT_EQ(readFile(target), "old");
    ASSERT_TRUE(writer.finish());
    EXPECT_EQ(probe(target)["nb_frames"], "1");
    EXPECT_EQ(folder.entryCount(), 1);
}

TEST(MovieWriter, fullDiskIsReportedAndLeavesNothing) {
    const TemporaryFolder folder;
    std::vector<ImageBuffer> frames;
    for (unsigned seed = 0; seed < 90; ++seed) {
        frames.push_back(noise(64, 64, seed));
    }
    ASSERT_TRUE(writeMovie(folder / "whole.mp4", frames));
    const std::size_t size = std::filesystem::file_size(folder / "whole.mp4");
    std::filesystem::remove(folder / "whole.mp4");
    ASSERT_GT(size, 100'000U); // several times the buffers on the way to the disk

    // At once, among the frames, with the last ones, and when the index moves to the front.
    for (const std::size_t limit : {std::size_t{0}, size / 4, size - 2000, size - 1}) {
        SCOPED_TRACE(testing::Message() << limit << " of " << size << " bytes");
        const Result<void> written = [&] {
            const FileSizeLimit limited(limit);
            return writeMovie(folder / "show.mp4", frames);
        }();
        ASSERT_FALSE(written);
        EXPECT_EQ(written.error().message,
                  "cannot write " + (folder / "show.mp4").string() + ": " + std::strerror(EFBIG));
        EXPECT_EQ(folder.entryCount(), 0);
    }
}

TEST(MovieWriter, fullDiskEndsARecordingEarly) {
    const TemporaryFolder folder;
    auto writer = MovieWriter::create(folder / "show.mp4", {.width = 64, .height = 64, .framesPerSecond = 30});
    ASSERT_TRUE(writer);
    const FileSizeLimit limited(0);
    unsigned frame = 0;
    while (frame < 1000 && writer.value().addFrame(noise(64, 64, frame))) {
        ++frame;
    }
    EXPECT_LT(frame, 1000U);
}

TEST(MovieWriter, noRoomForTheRegularFileKeepsTheFragmentsIfTheyAreWholeAndWanted) {
    enum class Meanwhile { Nothing, GivenUp, Damaged };
    constexpr int count = 60;
    for (const auto meanwhile : {Meanwhile::Nothing, Meanwhile::GivenUp, Meanwhile::Damaged}) {
        const TemporaryFolder folder;
        const auto target = folder / "show.mp4";
        std::ofstream(target) << "old";
        std::optional<FileSizeLimit> limited;
        std::filesystem::path part;
        int calls = 0;
        const auto wroteOrCopied = [&](std::int64_t /*frames*/) {
            if (++calls == count + 1) { // The last frame has been written; now it copies.
                if (meanwhile == Meanwhile::Damaged) {
                    std::filesystem::resize_file(part, std::filesystem::file_size(part) - 1000);
                }
                limited.emplace(20'000);
            }
            return meanwhile != Meanwhile::GivenUp || calls <= count + 1;
        };
        {
            auto writer = MovieWriter::create(target, {.width = 64, .height = 64, .framesPerSecond = 30},
                                              {.survivesKill = true, .frameWritten = wroteOrCopied});
            ASSERT_TRUE(writer);
            part = writer.value().partPath();
            for (unsigned frame = 0; frame < count; ++frame) {
                ASSERT_TRUE(writer.value().addFrame(noise(64, 64, frame)));
            }
            EXPECT_EQ(static_cast<bool>(writer.value().finish()), meanwhile == Meanwhile::Nothing);
        }
        ASSERT_TRUE(limited);
        limited.reset();
        EXPECT_EQ(folder.entryCount(), 1);
        if (meanwhile == Meanwhile::Nothing) {
            EXPECT_GT(std::filesystem::file_size(target), 20'000U);
            EXPECT_EQ(decode(target).size(), count * 64U * 64U * 3U);
        } else {
            EXPECT_EQ(std::filesystem::file_size(target), 3U);
        }
    }
}

TEST(MovieWriter, refusesWhatCannotBeAMovie) {
    const TemporaryFolder folder;
    for (const MovieFormat& format : {MovieFormat{0, 10, 30}, {10, -1, 30}, {16385, 10, 30}, {10, 16385, 30}}) {
        const auto writer = MovieWriter::create(folder / "show.mp4", format);
        ASSERT_FALSE(writer);
        EXPECT_THAT(writer.error().message, AllOf(HasSubstr("show.mp4"), HasSubstr("1 to 16384")));
    }
    EXPECT_FALSE(MovieWriter::create(folder / "show.mp4", {10, 10, 0}));
    EXPECT_FALSE(MovieWriter::create(folder / "nowhere" / "show.mp4", {10, 10, 30}));

    auto empty = MovieWriter::create(folder / "show.mp4", {10, 10, 30});
    ASSERT_TRUE(empty);
    EXPECT_FALSE(empty.value().finish());
}

TEST(MovieWriter, goesOnAfterAFrameOfTheWrongSize) {
    const TemporaryFolder folder;
    auto writer = MovieWriter::create(folder / "show.mp4", {.width = 20, .height = 10, .framesPerSecond = 30});
    ASSERT_TRUE(writer);
    ASSERT_TRUE(writer.value().addFrame(plain(20, 10, 5)));
    const auto added = writer.value().addFrame(plain(10, 20, 5));
    ASSERT_FALSE(added);
    EXPECT_THAT(added.error().message, AllOf(HasSubstr("show.mp4"), HasSubstr("10 x 20"), HasSubstr("20 x 10")));
    ASSERT_TRUE(writer.value().addFrame(plain(20, 10, 5)));
    ASSERT_TRUE(writer.value().finish());
    EXPECT_EQ(probe(folder / "show.mp4")["nb_frames"], "2");
}

TEST(MovieWriter, librariesSpeakToTheLogOnly) {
    const TemporaryFolder folder;
    std::vector<std::string> lines;
    setLogSink([&](LogLevel level, std::string_view area, std::string_view message) {
        lines.push_back((level == LogLevel::Warning ? "warning " : "info ") + std::string(area) + " " +
                        std::string(message));
    });
    testing::internal::CaptureStderr();
    EXPECT_TRUE(writeMovie(folder / "show.mp4", {plain(16, 16, 5)}));
    av_log(nullptr, AV_LOG_INFO, "chatter\n");
    av_log(nullptr, AV_LOG_ERROR, "the encoder's reason\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    setLogSink({});
    EXPECT_THAT(lines, ElementsAre("info export the encoder's reason"));
}

} // namespace

} // namespace starbloom
