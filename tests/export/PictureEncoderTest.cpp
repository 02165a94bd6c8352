// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/PictureEncoder.h"

#include "base/PendingFile.h"
#include "cli/FramePipeline.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>

namespace starbloom {

namespace {

using testing::HasSubstr;

ImageBuffer showFrame(int width, int height) {
    Options options;
    options.width = width;
    options.height = height;
    ImageBuffer image(width, height);
    FrameRenderer(options).render(5.5, image);
    return image;
}

std::vector<std::byte> encoded(const ImageBuffer& image, const PictureOptions& options) {
    return encodePicture(image, options, nullptr).value();
}

bool exists(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

bool runs(const std::string& command) {
    return std::system((command + " >/dev/null").c_str()) == 0;
}

/// The pixels as ffmpeg sees them.
ImageBuffer decoded(const std::vector<std::byte>& file, const std::string& extension, int width, int height) {
    const TemporaryFolder folder;
    const std::string path = folder / ("a." + extension);
    EXPECT_TRUE(writeFile(path, file));
    EXPECT_TRUE(extension != "jp2" || !exists("opj_decompress") ||
                runs("opj_decompress -i " + path + " -o " + path + ".ppm"));
    EXPECT_TRUE(extension != "tif" || !exists("tiffinfo") || runs("tiffinfo -D " + path));
    const std::string raw = folder / "raw";
    EXPECT_TRUE(runs("ffmpeg -v error -i " + path + " -pix_fmt rgba -f rawvideo " + raw));
    const std::string bytes = readFile(raw);
    ImageBuffer image(width, height);
    EXPECT_EQ(bytes.size(), image.bytes().size());
    std::copy_n(bytes.begin(), std::min(bytes.size(), image.bytes().size()), image.bytes().begin());
    return image;
}

/// Largest and root mean square difference.
std::pair<int, double> difference(const ImageBuffer& a, const ImageBuffer& b) {
    int largest = 0;
    double squares = 0.0;
    for (std::size_t i = 0; i < a.bytes().size(); ++i) {
        const int here = std::abs(a.bytes()[i] - b.bytes()[i]);
        largest = std::max(largest, here);
        squares += here * here;
    }
    return {largest, std::sqrt(squares / static_cast<double>(a.bytes().size()))};
}

TEST(PictureEncoder, otherProgramsSeeTheSamePicture) {
    const ImageBuffer frame = showFrame(333, 241);
    ImageBuffer light = frame;
    lightToAlpha(light);
    for (const PictureFormatRow& each : pictureFormats) {
        SCOPED_TRACE(each.extension);
        const auto [largest, mean] =
            difference(decoded(encoded(frame, {each.format}), std::string(each.extension), 333, 241), frame);
        const bool isLossless = !each.hasQuality && each.format != PictureFormat::Gif;
        EXPECT_LE(largest, isLossless ? 0 : 20); // 256 colours, dithered, differ by 14 here.
        EXPECT_LE(mean, isLossless ? 0.0 : 1.0);
        if (each.hasTransparency) {
            const auto file = encoded(light, {each.format, 1.0, true});
            EXPECT_LE(difference(decoded(file, std::string(each.extension), 333, 241), light).second,
                      isLossless ? 0.0 : 4.0);
        }
    }
}

TEST(PictureEncoder, everyStepOfQualityIsSmallerAndTheSkyStaysBlack) {
    const ImageBuffer frame = showFrame(640, 480);
    for (const PictureFormat format : {PictureFormat::Jpeg, PictureFormat::Jpeg2000}) {
        std::size_t last = ~std::size_t{0};
        for (int i = 0; i < 20; ++i) {
            const auto file = encoded(frame, {format, qualityOfIndex(i)});
            EXPECT_LT(static_cast<double>(file.size()), 0.985 * static_cast<double>(last)) << compressionTitles[i];
            last = file.size();
        }
        const auto image = decoded(encoded(frame, {format, 0.05}), std::string(row(format).extension), 640, 480);
        EXPECT_LE(image.row(3)[12], 1);
    }
}

/// Row by row, as it is coded: halved colour would be doubled by a filter that sees over the edges of a block.
std::string brightness(const std::vector<std::byte>& jpeg) {
    const TemporaryFolder folder;
    EXPECT_TRUE(writeFile(folder / "a.jpg", jpeg));
    const std::string raw = folder / "raw";
    EXPECT_TRUE(runs("ffmpeg -v error -i " + (folder / "a.jpg").string() + " -vf extractplanes=y -f rawvideo " + raw));
    return readFile(raw);
}

TEST(PictureEncoder, largeJpegsAreCodedInStripsThatDoNotShow) {
    const ImageBuffer frame = showFrame(1001, 1203); // Ten strips: more than there are markers.
    for (const double quality : {0.85, 1.0}) {
        const auto file = encoded(frame, {PictureFormat::Jpeg, quality});
        int restarts = 0;
        for (std::size_t i = 1; i < file.size(); ++i) {
            if (file[i - 1] == std::byte{0xFF} && (file[i] & std::byte{0xF8}) == std::byte{0xD0}) {
                ASSERT_EQ(std::to_integer<int>(file[i] & std::byte{7}), restarts++ % 8); // Not every decoder looks.
            }
        }
        EXPECT_EQ(restarts, 9);
        const std::string whole = brightness(file);
        ASSERT_EQ(whole.size(), 1001U * 1203U);
        for (int top = 0; top < 1203; top += 112) { // Too small to be split, and cut between the same blocks.
            ImageBuffer part(1001, std::min(112, 1203 - top));
            std::copy_n(frame.row(top), part.bytes().size(), part.row(0));
            const std::string alone = brightness(encoded(part, {PictureFormat::Jpeg, quality}));
            ASSERT_TRUE(whole.substr(1001U * static_cast<std::size_t>(top), alone.size()) == alone) << top;
        }
    }
}

TEST(PictureEncoder, whatCannotBeDoneIsSaidInTheLibrarysWords) {
    const ImageBuffer wide(65536, 1);
    EXPECT_THAT(encodePicture(wide, {PictureFormat::Gif}, nullptr).error().message, HasSubstr("65535"));
    EXPECT_THAT(encodePicture(wide, {PictureFormat::Jpeg}, nullptr).error().message, HasSubstr("65500 pixels"));
    for (const PictureFormatRow& each : pictureFormats) {
        EXPECT_FALSE(encodePicture(ImageBuffer(), {each.format}, nullptr)) << each.extension;
        EXPECT_TRUE(encodePicture(ImageBuffer(1, 1), {each.format}, nullptr)) << each.extension;
        EXPECT_TRUE(encodePicture(ImageBuffer(1, 40), {each.format}, nullptr)) << each.extension;
    }
}

TEST(PictureEncoder, lightOverBlackIsThePictureItself) {
    ImageBuffer image(256, 256);
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            image.row(y)[4 * x] = static_cast<std::uint8_t>(x);
            image.row(y)[4 * x + 1] = static_cast<std::uint8_t>(y);
        }
    }
    ImageBuffer light = image;
    lightToAlpha(light);
    for (std::size_t i = 0; i < image.bytes().size(); ++i) {
        if (i % 4 != 3) {
            const int over = light.bytes()[i] * light.bytes()[i | 3U];
            ASSERT_EQ((2 * over + 255) / 510, image.bytes()[i]) << i;
        }
    }
}

} // namespace

} // namespace starbloom
