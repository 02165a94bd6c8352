// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipWriter.h"
#include "export/clip/MovieJoiner.h"
#include "export/movie/MovieWriter.h"
#include "tests/export/ClipFrames.h"
#include "tests/export/MovieProbe.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <span>

namespace starbloom {

namespace {

using testing::AllOf;
using testing::HasSubstr;

using Frames = std::span<const ImageBuffer>;
using Paths = std::vector<std::filesystem::path>;

Result<void> write(const std::filesystem::path& target, Frames frames, int rate = 30) {
    const int width = frames.front().width();
    const int height = frames.front().height();
    if (target.extension() == ".m4v") {
        auto writer = MovieWriter::create(target, {width, height, rate, 1});
        for (const ImageBuffer& frame : frames) {
            EXPECT_TRUE(writer.value().addFrame(frame));
        }
        return writer.value().finish();
    }
    auto writer = makeClipWriter(
        *clipFormatOf(target), target,
        {.width = width, .height = height, .rate = {rate, 1}, .alpha = AlphaMode::Straight, .threads = 1});
    for (const ImageBuffer& frame : frames) {
        EXPECT_TRUE(writer.value()->add(frame));
    }
    return writer.value()->finish();
}

/// When each frame is shown, and for how long.
std::string timesOf(const std::filesystem::path& movie) {
    return outputOf("ffprobe -v error -of csv=p=0 -show_entries frame=pts_time,pkt_duration_time:stream=duration '" +
                    movie.string() + "' | grep -o '^[0-9.,]*[0-9]'");
}

std::string pixelsOf(const std::filesystem::path& movie) {
    const std::string decoder = movie.extension() == ".webm" ? "-c:v libvpx-vp9 " : "";
    return outputOf("ffmpeg -nostdin -v error " + decoder + "-i '" + movie.string() +
                    "' -vsync passthrough -pix_fmt rgba -f rawvideo -");
}

TEST(MovieJoiner, partsGiveTheMovieOfTheWhole) {
    const TemporaryFolder folder;
    const auto frames = showFrames(96, 72, 40);
    const Frames all(frames);
    for (const std::string extension : {".m4v", ".mov", ".webm"}) {
        SCOPED_TRACE(extension);
        const auto whole = folder / ("whole" + extension);
        const auto joined = folder / ("joined" + extension);
        ASSERT_TRUE(write(whole, all));
        Paths parts;
        std::string pixels;
        std::size_t begin = 0;
        // Parts that are shorter than the encoder's reordering are the difficult ones.
        for (const std::size_t length : {14U, 1U, 2U, 23U}) {
            parts.push_back(folder / ("part" + std::to_string(begin) + extension));
            ASSERT_TRUE(write(parts.back(), all.subspan(begin, length)));
            pixels += pixelsOf(parts.back());
            begin += length;
        }
        ASSERT_EQ(begin, frames.size());
        const auto result = joinMovies(parts, joined);
        ASSERT_TRUE(result) << result.error().message;
        EXPECT_EQ(result.value().frames, 40);
        EXPECT_NEAR(result.value().seconds, 40 / 30.0, 1.0e-9);
        EXPECT_EQ(timesOf(joined), timesOf(whole));
        EXPECT_TRUE(pixelsOf(joined) == pixels) << "something was encoded again, lost, or shown in another order";
        const std::string drawn = bytesOf(frames);
        const std::string seen = pixelsOf(whole);
        if (extension == ".m4v") {
            EXPECT_GE(psnr(pixels, drawn), psnr(seen, drawn) - 0.5);
        } else {
            EXPECT_GE(psnr(pixels, seen), extension == ".mov" ? 100.0 : 38.0);
        }
        auto facts = probe(joined);
        for (const auto& [name, value] : probe(whole)) {
            if (name != "bit_rate" && name != "duration" && name != "id") {
                EXPECT_EQ(facts[name], value) << name;
            }
        }
        EXPECT_EQ(facts["codec_tag_string"] == "ap4h", extension == ".mov") << facts["codec_tag_string"];
        // A destination may be one of the parts.
        ASSERT_TRUE(joinMovies(Paths{joined, parts[1]}, joined));
        EXPECT_EQ(pixelsOf(joined).size(), 41 * frames.front().bytes().size());
    }
}

TEST(MovieJoiner, partsThatDoNotFitAreNamed) {
    const TemporaryFolder folder;
    const auto frames = showFrames(64, 48, 30);
    const Frames all(frames);
    ASSERT_TRUE(write(folder / "a.m4v", all));
    ASSERT_TRUE(write(folder / "size.m4v", showFrames(80, 48, 2)));
    ASSERT_TRUE(write(folder / "rate.m4v", all.first(5), 25));
    ASSERT_TRUE(write(folder / "prores.mov", all.first(5)));
    ASSERT_TRUE(write(folder / "part.webm", all));
    std::ofstream(folder / "text.m4v") << "no movie";
    for (const std::string name : {"a.m4v", "part.webm"}) {
        const std::string bytes = readFile(folder / name);
        std::ofstream(folder / ("cut-" + name)) << bytes.substr(0, bytes.size() * 2 / 3);
    }
    const int entries = folder.entryCount();

    struct Case {
        const char* first;
        const char* part;
        const char* destination;
        const char* reason;
    };

    for (const auto& [first, part, destination, reason] :
         {Case{"a.m4v", "size.m4v", "z.m4v", "its size is not that of"},
          Case{"a.m4v", "rate.m4v", "z.m4v", "its frame rate is not that of"},
          Case{"a.m4v", "prores.mov", "z.mov", "its codec is not that of"},
          Case{"a.m4v", "text.m4v", "z.m4v", "Invalid data"}, Case{"a.m4v", "none.m4v", "z.m4v", "No such file"},
          Case{"a.m4v", "cut-a.m4v", "z.m4v", ""}, Case{"part.webm", "cut-part.webm", "z.webm", ""}}) {
        const auto joined = joinMovies(Paths{folder / first, folder / part}, folder / destination);
        ASSERT_FALSE(joined) << part;
        EXPECT_THAT(joined.error().message, AllOf(HasSubstr((folder / part).string()), HasSubstr(reason)));
    }
    EXPECT_THAT(joinMovies(Paths{folder / "a.m4v"}, folder / "z.gif").error().message, HasSubstr(".webm"));
    EXPECT_FALSE(joinMovies({}, folder / "z.mov"));
    int asked = 0;
    EXPECT_FALSE(joinMovies(Paths{folder / "a.m4v"}, folder / "z.m4v", [&] { return ++asked < 5; }));
    EXPECT_EQ(folder.entryCount(), entries);
}

} // namespace

} // namespace starbloom
