// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/PngCodec.h"

#include <gmock/gmock.h>
#include <png.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace starbloom {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Bytes = std::vector<std::byte>;

ImageBuffer noise(int width, int height) {
    std::mt19937 random(1);
    ImageBuffer image(width, height);
    for (auto& byte : image.bytes()) {
        byte = static_cast<std::uint8_t>(random());
    }
    return image;
}

/// The names of a PNG's chunks, in order, a run of the same name once.
std::vector<std::string> chunkNames(const Bytes& png) {
    std::vector<std::string> names;
    for (std::size_t at = 8; at + 12 <= png.size();) {
        const auto* chunk = reinterpret_cast<const png_byte*>(png.data()) + at;
        const std::string name(reinterpret_cast<const char*>(chunk) + 4, 4);
        if (names.empty() || names.back() != name) {
            names.push_back(name);
        }
        at += 12 + png_get_uint_32(chunk);
    }
    return names;
}

TEST(PngEncoder, keepsTheColoursDropsAlphaAndTagsSrgb) {
    for (const auto& [width, height] : {std::pair{1, 1}, {37, 11}, {300, 200}}) {
        ImageBuffer image = noise(width, height);
        const auto png = encodePng(image);
        ASSERT_TRUE(png);
        EXPECT_THAT(chunkNames(png.value()), ElementsAre("IHDR", "sRGB", "IDAT", "IEND"));

        png_image reader{};
        reader.version = PNG_IMAGE_VERSION;
        ASSERT_NE(png_image_begin_read_from_memory(&reader, png.value().data(), png.value().size()), 0);
        EXPECT_EQ(reader.format, PNG_FORMAT_RGB);
        reader.format = PNG_FORMAT_RGBA;
        ImageBuffer decoded(static_cast<int>(reader.width), static_cast<int>(reader.height));
        ASSERT_NE(png_image_finish_read(&reader, nullptr, decoded.bytes().data(), 0, nullptr), 0);
        for (std::size_t alpha = 3; alpha < image.bytes().size(); alpha += 4) {
            image.bytes()[alpha] = 255;
        }
        EXPECT_TRUE(decoded == image);
    }
}

TEST(PngEncoder, samePixelsGiveTheSameBytesAndNoPixelsAnError) {
    EXPECT_EQ(encodePng(noise(50, 40)).value(), encodePng(noise(50, 40)).value());
    EXPECT_FALSE(encodePng(ImageBuffer()));
    EXPECT_FALSE(encodePng(ImageBuffer(0, 5)));
}

/// What kind of PNG to make.
struct Kind {
    int colorType;
    int depth;
    bool interlaced = false;
    bool transparentKey = false; ///< the first pixel's grey is transparent
    int physicalUnit = -1;       ///< of a pHYs chunk; -1: none
    png_uint_32 pixelsPerUnit = 0;
};

struct Picture {
    int width;
    int height;
    int channels;
    std::vector<unsigned> samples;
};

Picture randomPicture(const Kind& kind, int width, int height) {
    const std::map<int, int> channelsOf{
        {PNG_COLOR_TYPE_GRAY_ALPHA, 2}, {PNG_COLOR_TYPE_RGB, 3}, {PNG_COLOR_TYPE_RGB_ALPHA, 4}};
    const auto found = channelsOf.find(kind.colorType);
    const int channels = found == channelsOf.end() ? 1 : found->second;
    Picture picture{width, height, channels, {}};
    std::mt19937 random(7);
    for (int i = 0; i < width * height * channels; ++i) {
        picture.samples.push_back(static_cast<unsigned>(random()) % (1U << kind.depth));
    }
    return picture;
}

void appendBytes(png_structp png, png_bytep data, png_size_t length) {
    auto* bytes = reinterpret_cast<std::byte*>(data);
    auto& output = *static_cast<Bytes*>(png_get_io_ptr(png));
    output.insert(output.end(), bytes, bytes + length);
}

constexpr png_color palette[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
constexpr png_byte paletteAlpha[] = {255, 128, 255, 0};

void setChunks(png_structp png, png_infop info, const Kind& kind, const Picture& picture) {
    if (kind.colorType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, palette, 4);
        png_set_tRNS(png, info, paletteAlpha, 4, nullptr);
    }
    if (kind.transparentKey) {
        png_color_16 key{};
        key.gray = static_cast<png_uint_16>(picture.samples[0]);
        png_set_tRNS(png, info, nullptr, 0, &key);
    }
    if (kind.physicalUnit >= 0) {
        png_set_pHYs(png, info, kind.pixelsPerUnit, kind.pixelsPerUnit, kind.physicalUnit);
    }
}

Bytes makePng(const Kind& kind, const Picture& picture) {
    Bytes output;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &output, appendBytes, nullptr);
    png_set_IHDR(png, info, picture.width, picture.height, kind.depth, kind.colorType,
                 kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, 0, 0);
    setChunks(png, info, kind, picture);
    png_write_info(png, info);
    png_set_packing(png);
    std::vector<png_byte> bytes;
    for (const unsigned sample : picture.samples) {
        if (kind.depth == 16) {
            bytes.push_back(static_cast<png_byte>(sample >> 8));
        }
        bytes.push_back(static_cast<png_byte>(sample));
    }
    std::vector<png_bytep> rows;
    for (int y = 0; y < picture.height; ++y) {
        rows.push_back(bytes.data() + bytes.size() / picture.height * y);
    }
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return output;
}

double expectedLight(const Kind& kind, const Picture& picture, std::size_t pixel) {
    const double most = (1 << kind.depth) - 1;
    const auto sample = [&](int channel) { return picture.samples[pixel * picture.channels + channel] / most; };
    switch (kind.colorType) {
    case PNG_COLOR_TYPE_PALETTE: {
        const unsigned index = picture.samples[pixel];
        const png_color& color = palette[index];
        return (0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue) / 255 * paletteAlpha[index] / 255;
    }
    case PNG_COLOR_TYPE_GRAY:
        return kind.transparentKey && picture.samples[pixel] == picture.samples[0] ? 0.0 : sample(0);
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return sample(0) * sample(1);
    default:
        const double luminance = 0.2126 * sample(0) + 0.7152 * sample(1) + 0.0722 * sample(2);
        return picture.channels == 4 ? luminance * sample(3) : luminance;
    }
}

TEST(SparkDecoder, readsEveryKindOfPng) {
    for (const Kind& kind : {Kind{PNG_COLOR_TYPE_GRAY, 1},
                             {PNG_COLOR_TYPE_GRAY, 2},
                             {PNG_COLOR_TYPE_GRAY, 4},
                             {PNG_COLOR_TYPE_GRAY, 8},
                             {PNG_COLOR_TYPE_GRAY, 8, true},
                             {PNG_COLOR_TYPE_GRAY, 16},
                             {PNG_COLOR_TYPE_GRAY, 4, false, true},
                             {PNG_COLOR_TYPE_GRAY, 16, false, true},
                             {PNG_COLOR_TYPE_GRAY_ALPHA, 8},
                             {PNG_COLOR_TYPE_GRAY_ALPHA, 16, true},
                             {PNG_COLOR_TYPE_RGB, 8},
                             {PNG_COLOR_TYPE_RGB, 16},
                             {PNG_COLOR_TYPE_RGB_ALPHA, 8, true},
                             {PNG_COLOR_TYPE_RGB_ALPHA, 16},
                             {PNG_COLOR_TYPE_PALETTE, 2},
                             {PNG_COLOR_TYPE_PALETTE, 2, true}}) {
        SCOPED_TRACE(testing::Message() << "type " << kind.colorType << " depth " << kind.depth);
        const Picture picture = randomPicture(kind, 19, 11);
        const auto spark = decodeSparkImage(makePng(kind, picture));
        ASSERT_TRUE(spark) << spark.error().message;
        EXPECT_EQ(spark.value().width, 19);
        EXPECT_EQ(spark.value().height, 11);
        EXPECT_EQ(spark.value().pixelsPerPoint, 1.0);
        ASSERT_EQ(spark.value().light.size(), 19U * 11U);
        for (std::size_t pixel = 0; pixel < 19 * 11; ++pixel) {
            // Far below one step of 16 bits, which is 1.5e-5.
            ASSERT_NEAR(spark.value().light[pixel], expectedLight(kind, picture, pixel), 1e-6) << "pixel " << pixel;
        }
    }
}

double decodedDensity(int unit, png_uint_32 pixelsPerUnit) {
    const Kind kind{PNG_COLOR_TYPE_GRAY, 8, false, false, unit, pixelsPerUnit};
    return decodeSparkImage(makePng(kind, randomPicture(kind, 2, 2))).value().pixelsPerPoint;
}

TEST(SparkDecoder, takesThePixelsPerPointFromTheFile) {
    EXPECT_EQ(decodedDensity(PNG_RESOLUTION_METER, 2835), 1.0);
    EXPECT_EQ(decodedDensity(PNG_RESOLUTION_METER, 5669), 2.0);
    EXPECT_EQ(decodedDensity(PNG_RESOLUTION_METER, 11339), 4.0);
    EXPECT_EQ(decodedDensity(PNG_RESOLUTION_METER, 11811), 300.0 / 72.0);
    EXPECT_EQ(decodedDensity(PNG_RESOLUTION_UNKNOWN, 11339), 1.0);
    // Too coarse to be meant; a density of 0 would divide by it.
    EXPECT_EQ(decodedDensity(PNG_RESOLUTION_METER, 1), 1.0);
}

TEST(SparkDecoder, refusesWhatIsCutShortOrTooLarge) {
    const Kind kind{PNG_COLOR_TYPE_RGB_ALPHA, 16, true};
    const Bytes png = makePng(kind, randomPicture(kind, 9, 9));
    for (std::size_t length = 0; length < png.size(); ++length) {
        const auto spark = decodeSparkImage(std::span(png).first(length));
        ASSERT_FALSE(spark) << length << " bytes of " << png.size();
        ASSERT_THAT(spark.error().message, HasSubstr("cannot read the PNG picture: "));
    }
    Bytes longer = png;
    longer.resize(png.size() + 100);
    EXPECT_TRUE(decodeSparkImage(longer));

    for (const auto& [width, height] : {std::pair{4097, 1}, {1, 4097}}) {
        const Kind grey{PNG_COLOR_TYPE_GRAY, 8};
        const auto spark = decodeSparkImage(makePng(grey, randomPicture(grey, width, height)));
        ASSERT_FALSE(spark);
        EXPECT_THAT(spark.error().message, HasSubstr("larger than 4096 x 4096"));
    }
}

TEST(SparkDecoder, survivesDamagedBytes) {
    const Kind kind{PNG_COLOR_TYPE_PALETTE, 2};
    const Bytes png = makePng(kind, randomPicture(kind, 16, 16));
    for (std::size_t at = 0; at < png.size(); ++at) {
        for (const std::byte damage : {std::byte{0x01}, std::byte{0x80}, std::byte{0xFF}}) {
            Bytes damaged = png;
            damaged[at] ^= damage;
            const auto spark = decodeSparkImage(damaged);
            if (spark) { // some chunks may be ignored
                EXPECT_EQ(spark.value().light.size(), 256U);
            }
        }
    }
}

} // namespace

} // namespace starbloom
