// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipWriter.h"

#include "export/picture/PictureEncoder.h"
#include "tests/export/ClipFrames.h"
#include "tests/export/MovieProbe.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

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
                    " -sws_flags accurate_rnd+full_chroma_int+full_chroma_inp -pix_fmt " + pixels + " -f rawvideo -");
}

/// What ffmpeg makes of a clip laid over a plain colour. Its overlay takes RGB that was multiplied for limited range.
std::string laidOver(const std::filesystem::path& clip, AlphaMode alpha) {
    const std::string divide = alpha == AlphaMode::Premultiplied ? ",unpremultiply=inplace=1" : "";
    const std::string blend = alpha == AlphaMode::Opaque ? "blend=all_mode=addition:shortest=1"
                                                         : "overlay=format=gbrp:shortest=1:alpha=straight";
    return decodeWith(
        "-f lavfi -i color=c=0x2040A0:s=160x120:r=30,format=gbrp " + inputOf(clip) +
            " -filter_complex '[1:v]settb=1/30,setpts=N,format=" + (alpha == AlphaMode::Opaque ? "gbrp" : "gbrap") + divide +
            "[light];[0:v][light]" + blend + "'",
        "rgb24");
}

/// The same, computed from the frames.
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
    for (const auto& [name, alpha, decibels] : {
             Case{"a.mov", AlphaMode::Straight, 40.0},
             Case{"a.mov", AlphaMode::Premultiplied, 40.0},
             Case{"a.mov", AlphaMode::Opaque, 40.0},
             Case{"a.webm", AlphaMode::Straight, 30.0},
             Case{"a.webm", AlphaMode::Premultiplied, 30.0},
             Case{"a.webm", AlphaMode::Opaque, 30.0},
             Case{"a.apng", AlphaMode::Straight, 48.0},
             Case{"a.apng", AlphaMode::Opaque, 99.0},
             Case{"a.rgba", AlphaMode::Straight, 48.0},
             Case{"a.rgba", AlphaMode::Premultiplied, 48.0},
             Case{"a.rgba", AlphaMode::Opaque, 99.0},
             Case{"a.y4m", AlphaMode::Opaque, 30.0},
         }) {
        SCOPED_TRACE(testing::Message() << name << " " << static_cast<int>(alpha));
        const auto written = writeClip(folder / name, frames, {.alpha = alpha});
        ASSERT_TRUE(written) << written.error().message;
        const double measured = psnr(laidOver(folder / name, alpha), expectedOver(frames, alpha));
        std::printf("%s %d %.2f\n", name, static_cast<int>(alpha), measured);
        EXPECT_GE(measured, decibels);
    }
}

} // namespace

} // namespace starbloom
