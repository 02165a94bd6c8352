// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipWriter.h"

#include "export/picture/PictureEncoder.h"
#include "tests/export/ClipFrames.h"
#include "tests/export/MovieProbe.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

constexpr int width = 160;
constexpr int height = 120;
constexpr std::array<int, 3> layerBelow{32, 64, 160};

Result<void> writeClip(const std::filesystem::path& target, const std::vector<ImageBuffer>& frames,
                       ClipSettings settings = {}) {
    settings.width = frames.front().width();
    settings.height = frames.front().height();
    auto writer = makeClipWriter(*clipFormatOf(target), target, settings);
    if (!writer) {
        return writer.error();
    }
    for (const ImageBuffer& frame : frames) {
        if (auto added = writer.value()->add(frame); !added) {
            return added;
        }
    }
    return writer.value()->finish();
}

/// How ffmpeg is told to read a clip: it knows neither the alpha of VP9 by itself, nor what raw bytes mean.
std::string inputOf(const std::filesystem::path& clip) {
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    const std::string extension = clip.extension();
    return (extension == ".webm"   ? "-c:v libvpx-vp9 "
            : extension == ".rgba" ? "-f rawvideo -pixel_format rgba -framerate 30 -video_size " + size + " "
            : extension == ".apng" ? "-f apng "
                                   : "") +
           std::string("-i '") + clip.string() + "'";
}

std::string decodeWith(const std::string& arguments, const std::string& pixels) {
    return outputOf("ffmpeg -nostdin -v error " + arguments +
                    " -vsync passthrough -sws_flags accurate_rnd+full_chroma_int+full_chroma_inp -pix_fmt " + pixels +
                    " -f rawvideo -");
}

/// What ffmpeg makes of a clip laid over a plain colour. Its overlay takes RGB that was multiplied for limited range.
std::string laidOver(const std::filesystem::path& clip, AlphaMode alpha) {
    const std::string divide = alpha == AlphaMode::Premultiplied ? ",unpremultiply=inplace=1" : "";
    const std::string blend = alpha == AlphaMode::Opaque ? "blend=all_mode=addition:shortest=1"
                                                         : "overlay=format=gbrp:shortest=1:alpha=straight";
    return decodeWith(
        "-f lavfi -i color=c=0x2040A0:s=160x120:r=30,format=gbrp " + inputOf(clip) +
            " -filter_complex '[1:v]settb=1/30,setpts=N,format=" + (alpha == AlphaMode::Opaque ? "gbrp" : "gbrap") +
            divide + "[light];[0:v][light]" + blend + "'",
        "rgb24");
}

/// All frames of an animated WebP as RGBA, each laid over the one before; ffmpeg does not read them.
std::string webpFrames(const std::filesystem::path& clip, const std::filesystem::path& folder) {
    const std::string still = "'" + (folder / "still.webp").string() + "'";
    std::istringstream table(outputOf("webpmux -info '" + clip.string() + "' | grep '^ *[0-9]*: '"));
    std::string canvas(std::size_t{4} * width * height, '\0');
    std::string frames;
    int number = 0;
    std::size_t columns = 0;
    std::size_t rows = 0;
    std::size_t left = 0;
    std::size_t top = 0;
    std::string skipped;
    for (std::string line; std::getline(table, line);) {
        std::istringstream(line) >> skipped >> columns >> rows >> skipped >> left >> top;
        outputOf("webpmux -get frame " + std::to_string(++number) + " '" + clip.string() + "' -o " + still + " 2>&1");
        const std::string pixels = outputOf("dwebp -quiet -pam " + still + " -o -");
        const std::size_t start = pixels.size() - 4 * columns * rows;
        for (std::size_t y = 0; y < rows; ++y) {
            canvas.replace(((top + y) * width + left) * 4, 4 * columns, pixels, start + 4 * columns * y, 4 * columns);
        }
        frames += canvas;
    }
    std::filesystem::remove(folder / "still.webp");
    return frames;
}

/// What a clip laid over the colour should be, computed from its frames.
std::string expectedOver(const std::vector<ImageBuffer>& frames, AlphaMode alpha) {
    std::string result;
    for (const ImageBuffer& frame : frames) {
        for (std::size_t i = 0; i < frame.bytes().size(); i += 4) {
            const auto* light = &frame.bytes()[i];
            const int cover = alpha == AlphaMode::Opaque ? 0 : std::max({light[0], light[1], light[2]});
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const int below = (layerBelow[channel] * (255 - cover) + 127) / 255;
                result += static_cast<char>(std::min(light[channel] + below, 255));
            }
        }
    }
    return result;
}

TEST(ClipWriter, laidOverAColourIsTheShow) {
    struct Case {
        const char* name;
        AlphaMode alpha;
        double decibels; ///< A little less than measured.
    };

    const TemporaryFolder folder;
    const auto frames = showFrames(width, height, 12);
    for (const auto& [name, alpha, decibels] :
         {Case{"a.mov", AlphaMode::Straight, 61.0}, Case{"a.mov", AlphaMode::Premultiplied, 61.0},
          Case{"a.mov", AlphaMode::Opaque, 61.0}, Case{"a.webm", AlphaMode::Straight, 46.0},
          Case{"a.webm", AlphaMode::Premultiplied, 39.0}, Case{"a.webm", AlphaMode::Opaque, 38.0},
          Case{"a.apng", AlphaMode::Straight, 67.0}, Case{"a.apng", AlphaMode::Opaque, 100.0},
          Case{"a.rgba", AlphaMode::Straight, 67.0}, Case{"a.rgba", AlphaMode::Premultiplied, 67.0},
          Case{"a.rgba", AlphaMode::Opaque, 100.0}, Case{"a.y4m", AlphaMode::Opaque, 40.0}}) {
        SCOPED_TRACE(testing::Message() << name << " " << static_cast<int>(alpha));
        const auto written = writeClip(folder / name, frames, {.alpha = alpha});
        ASSERT_TRUE(written) << written.error().message;

        const std::string seen = laidOver(folder / name, alpha);
        const std::string expected = expectedOver(frames, alpha);
        EXPECT_GE(psnr(seen, expected), decibels);
        if (decibels > 65.0) {
            // Divided and multiplied again, ffmpeg's bytes are rounded once more.
            EXPECT_LE(largestDifference(seen, expected), alpha == AlphaMode::Premultiplied ? 2 : 1);
        }
    }
    // Light on black that is added to a colour is what the renderer draws on that colour.
    const auto drawn = showFrames(width, height, 12, {32 / 255.0F, 64 / 255.0F, 160 / 255.0F, 1.0F});
    ASSERT_TRUE(writeClip(folder / "drawn.rgba", drawn));
    for (const ImageBuffer& frame : drawn) {
        for (std::size_t i = 3; i < frame.bytes().size(); i += 4) {
            ASSERT_EQ(frame.bytes()[i], 255); // Raw frames are written as they are.
        }
    }
    ASSERT_TRUE(writeClip(folder / "light.apng", frames));
    EXPECT_EQ(laidOver(folder / "light.apng", AlphaMode::Opaque), decodeWith(inputOf(folder / "drawn.rgba"), "rgb24"));
}

/// The frames of a lossless clip come back as they were, those where little or nothing changes too.
TEST(ClipWriter, losslessClipsAreExact) {
    const TemporaryFolder folder;
    auto frames = showFrames(width, height, 7);
    frames.push_back(frames.back());
    frames.push_back(frames.back());
    frames.back().row(height - 1)[4 * (width - 1)] ^= 0x55U;
    for (const AlphaMode alpha : {AlphaMode::Opaque, AlphaMode::Straight}) {
        auto expected = frames;
        for (ImageBuffer& frame : expected) {
            if (alpha == AlphaMode::Straight) {
                lightToAlpha(frame);
            }
        }
        ASSERT_TRUE(writeClip(folder / "a.apng", frames, {.alpha = alpha}));
        EXPECT_TRUE(decodeWith(inputOf(folder / "a.apng"), "rgba") == bytesOf(expected));
        ASSERT_TRUE(writeClip(folder / "a.webp", frames, {.alpha = alpha, .quality = 1.0}));
        EXPECT_EQ(psnr(webpFrames(folder / "a.webp", folder.path()), bytesOf(expected)), 100.0);
    }
    ASSERT_TRUE(writeClip(folder / "lossy.webp", frames, {.alpha = AlphaMode::Opaque, .quality = 0.9}));
    EXPECT_GE(psnr(webpFrames(folder / "lossy.webp", folder.path()), bytesOf(frames)), 36.0);
}

TEST(ClipWriter, framesKeepTheirTimes) {
    const TemporaryFolder folder;
    const std::vector<ImageBuffer> frames = showFrames(64, 48, 31);
    const auto times = [](const std::filesystem::path& clip) {
        return outputOf("ffprobe -v error -of csv=p=0 -show_entries packet=pts_time '" + clip.string() + "' | tail -1");
    };
    const FrameRate film{24000, 1001};
    for (const auto& [name, last] : {std::pair{"a.mov", "1.251250"}, {"a.webm", "1.251000"}, {"a.y4m", "1.251250"}}) {
        ASSERT_TRUE(writeClip(folder / name, frames, {.rate = film}));
        EXPECT_EQ(times(folder / name), std::string(last) + "\n") << name;
        EXPECT_EQ(probe(folder / name)["avg_frame_rate"], "24000/1001") << name;
    }
    // A GIF leaves out what would be shown for less than two hundredths of a second.
    ASSERT_TRUE(writeClip(folder / "a.gif", frames, {.rate = {30, 1}}));
    EXPECT_EQ(times(folder / "a.gif"), "1.000000\n");
    ASSERT_TRUE(writeClip(folder / "fast.gif", frames, {.rate = {120, 1}}));
    EXPECT_EQ(times(folder / "fast.gif"), "0.240000\n");
    ASSERT_TRUE(writeClip(folder / "a.webp", frames, {.rate = {30, 1}}));
    EXPECT_THAT(outputOf("webpmux -info '" + (folder / "a.webp").string() + "' | grep -c ' 33 \\| 34 '"), "31\n");
}

/// What does not move, does not change in a GIF; and 256 colours a frame are close to the show.
TEST(ClipWriter, gifIsSteadyAndClose) {
    const TemporaryFolder folder;
    const auto frames = showFrames(320, 240, 8);
    ASSERT_TRUE(writeClip(folder / "a.gif", frames));
    const std::string shown = decodeWith("-i '" + (folder / "a.gif").string() + "'", "rgba");
    const std::string drawn = bytesOf(frames);
    EXPECT_GE(psnr(shown, drawn), 38.0);
    const std::size_t frameSize = frames.front().bytes().size();
    int flickers = 0;
    for (std::size_t i = frameSize; i < drawn.size(); i += 4) {
        const bool still = drawn.compare(i, 4, drawn, i - frameSize, 4) == 0;
        flickers += still && shown.compare(i, 4, shown, i - frameSize, 4) != 0 ? 1 : 0;
    }
    EXPECT_EQ(flickers, 0);
}

TEST(ClipWriter, sameFramesGiveTheSameBytesOnAnyNumberOfThreads) {
    const TemporaryFolder folder;
    const auto frames = showFrames(161, 121, 9); // odd sides are kept
    for (const ClipTraits& traits : clipFormats) {
        const AlphaMode alpha = traits.hasAlpha ? AlphaMode::Straight : AlphaMode::Opaque;
        const auto a = folder / ("a" + std::string(traits.extension));
        const auto b = folder / ("b" + std::string(traits.extension));
        const auto write = [&](const std::filesystem::path& target, int threads) {
            return oneapi::tbb::task_arena(threads).execute(
                [&] { return writeClip(target, frames, {.alpha = alpha, .threads = 2}); });
        };
        const auto written = write(a, 1);
        ASSERT_TRUE(written) << written.error().message;
        ASSERT_TRUE(write(b, 2));
        EXPECT_TRUE(readFile(a) == readFile(b)) << traits.name;
        if (traits.format != ClipFormat::WebP && traits.format != ClipFormat::Rgba) {
            auto facts = probe(a);
            const bool even = traits.format == ClipFormat::Y4m;
            EXPECT_EQ(facts["width"] + " x " + facts["height"], even ? "162 x 122" : "161 x 121") << traits.name;
        }
    }
    EXPECT_EQ(folder.entryCount(), 14);
}

TEST(ClipWriter, failuresAreToldAndLeaveNothing) {
    const TemporaryFolder folder;
    const std::vector<ImageBuffer> frames{noise(64, 64, 1), noise(64, 64, 2), noise(64, 64, 3)};
    for (const ClipTraits& traits : clipFormats) {
        SCOPED_TRACE(traits.name);
        const auto target = folder / ("a" + std::string(traits.extension));
        ASSERT_TRUE(writeClip(target, frames));
        const auto size = std::filesystem::file_size(target);
        std::ofstream(target) << "old";
        for (const std::size_t limit : {std::size_t{0}, static_cast<std::size_t>(size / 2)}) {
            const FileSizeLimit limited(limit);
            const auto written = writeClip(target, frames);
            ASSERT_FALSE(written);
            EXPECT_EQ(written.error().message, "cannot write " + target.string() + ": " + std::strerror(EFBIG));
        }
        {
            auto writer = makeClipWriter(traits.format, target, {.width = 64, .height = 64});
            ASSERT_TRUE(writer);
            EXPECT_THAT(writer.value()->finish().error().message, HasSubstr("no frames"));
            ASSERT_TRUE(writer.value()->add(frames.front()));
            EXPECT_THAT(writer.value()->add(noise(32, 64, 1)).error().message, HasSubstr("32 x 64"));
        }
        EXPECT_EQ(readFile(target), "old");
        std::filesystem::remove(target);
        EXPECT_EQ(folder.entryCount(), 0);
    }
}

TEST(ClipWriter, refusesWhatAFormatCannotBe) {
    struct Case {
        ClipFormat format;
        ClipDestination destination;
        ClipSettings settings;
        const char* reason;
    };

    const TemporaryFolder folder;
    const std::filesystem::path file = folder / "a";
    const ClipSettings good{.width = 8, .height = 8};
    const auto with = [&](auto change) {
        ClipSettings settings = good;
        change(settings);
        return settings;
    };
    for (const auto& [format, destination, settings, reason] :
         {Case{ClipFormat::Gif, file, with([](auto& s) { s.alpha = AlphaMode::Straight; }), "GIF has no transparency"},
          Case{ClipFormat::Y4m, file, with([](auto& s) { s.alpha = AlphaMode::Straight; }), "Y4M has no transparency"},
          Case{ClipFormat::Apng, file, with([](auto& s) { s.alpha = AlphaMode::Premultiplied; }), "straight alpha"},
          Case{ClipFormat::WebP, file, with([](auto& s) { s.width = 16384; }), "1 to 16383"},
          Case{ClipFormat::ProRes, file, with([](auto& s) { s.height = 0; }), "8 x 0 pixels"},
          Case{ClipFormat::Vp9, file, with([](auto& s) {
                   s.rate = {1001, 1};
               }),
               "1 to 1000"},
          Case{ClipFormat::Vp9, ClipStream{1}, good, "standard output: WebM needs a file"},
          Case{ClipFormat::Apng, folder / "no" / "a", good, std::strerror(ENOENT)}}) {
        const auto writer = makeClipWriter(format, destination, settings);
        ASSERT_FALSE(writer) << reason;
        EXPECT_THAT(writer.error().message, HasSubstr(reason));
    }
}

TEST(ClipWriter, streamGetsEachFrameAndTellsWhenNobodyReads) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_NONBLOCK), 0);
    const auto frame = noise(8, 8, 1);
    auto writer = makeClipWriter(ClipFormat::Rgba, ClipStream{pipe[1]}, {.width = 8, .height = 8});
    ASSERT_TRUE(writer && writer.value()->add(frame));
    std::array<char, 1000> read{};
    EXPECT_EQ(::read(pipe[0], read.data(), read.size()), 8 * 8 * 4);
    ::close(pipe[0]);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(writer.value()->add(frame).error().message,
              std::string("cannot write the stream: ") + std::strerror(EPIPE));
    std::signal(SIGPIPE, before);
    ::close(pipe[1]);
}

} // namespace

} // namespace starbloom
