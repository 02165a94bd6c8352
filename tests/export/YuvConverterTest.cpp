// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/YuvConverter.h"

#include <gmock/gmock.h>
#include <hwy/targets.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace starbloom {

namespace {

/// Planes with a margin at the right of each row, which must stay as it is.
struct Planes {
    static constexpr std::uint8_t untouched = 77;
    static constexpr int margin = 9;

    explicit Planes(const ImageBuffer& image)
        : width((image.width() + 1) / 2 * 2)
        , height((image.height() + 1) / 2 * 2)
        , luma(static_cast<std::size_t>(width + margin) * height, untouched)
        , blue(static_cast<std::size_t>(width / 2 + margin) * (height / 2), untouched)
        , red(blue) {}

    YuvPlanes view() { return {luma.data(), width + margin, blue.data(), red.data(), width / 2 + margin}; }

    friend bool operator==(const Planes&, const Planes&) = default;

    int width;
    int height;
    std::vector<std::uint8_t> luma;
    std::vector<std::uint8_t> blue;
    std::vector<std::uint8_t> red;
};

Planes convert(const ImageBuffer& image, YuvMatrix matrix) {
    Planes planes(image);
    convertToYuv(image, matrix, planes.view());
    return planes;
}

/// Noise with many pure colours in it, as they reach the ends of the ranges.
ImageBuffer noise(int width, int height) {
    std::mt19937 random(static_cast<unsigned>(width * 1000 + height));
    ImageBuffer image(width, height);
    for (auto& byte : image.bytes()) {
        const unsigned draw = random() % 512;
        byte = static_cast<std::uint8_t>(draw < 256 ? draw : (draw % 2) * 255);
    }
    return image;
}

using Triple = std::array<double, 3>;

Triple pixel(const ImageBuffer& image, int x, int y) {
    if (x >= image.width() || y >= image.height()) {
        return {0.0, 0.0, 0.0};
    }
    const std::uint8_t* p = image.row(y) + std::max(x, 0) * ImageBuffer::channels;
    return {double(p[0]), double(p[1]), double(p[2])};
}

/// The definition in floating point: Y, Cb, Cr of red, green, blue.
Triple exact(const Triple& rgb, YuvMatrix matrix) {
    const double kr = matrix == YuvMatrix::Bt709 ? 0.2126 : 0.299;
    const double kb = matrix == YuvMatrix::Bt709 ? 0.0722 : 0.114;
    const double y = kr * rgb[0] + (1 - kr - kb) * rgb[1] + kb * rgb[2];
    return {16 + y * 219 / 255, 128 + (rgb[2] - y) / (2 * (1 - kb)) * 224 / 255,
            128 + (rgb[0] - y) / (2 * (1 - kr)) * 224 / 255};
}

Triple chromaSource(const ImageBuffer& image, int x, int y) {
    Triple mean{};
    for (int row : {y, y + 1}) {
        const Triple middle = pixel(image, x, row);
        const Triple left = x == 0 ? middle : pixel(image, x - 1, row);
        const Triple right = pixel(image, x + 1, row);
        for (std::size_t i = 0; i < 3; ++i) {
            mean[i] += (left[i] + 2 * middle[i] + right[i]) / 8;
        }
    }
    return mean;
}

double largestError(const ImageBuffer& image, const Planes& planes, YuvMatrix matrix) {
    double worst = 0.0;
    for (int y = 0; y < planes.height; ++y) {
        for (int x = 0; x < planes.width; ++x) {
            const double luma = planes.luma[y * (planes.width + Planes::margin) + x];
            worst = std::max(worst, std::abs(luma - exact(pixel(image, x, y), matrix)[0]));
            if (x % 2 == 0 && y % 2 == 0) {
                const Triple wanted = exact(chromaSource(image, x, y), matrix);
                const int at = y / 2 * (planes.width / 2 + Planes::margin) + x / 2;
                worst = std::max({worst, std::abs(planes.blue[at] - wanted[1]), std::abs(planes.red[at] - wanted[2])});
            }
        }
    }
    return worst;
}

int untouchedMargins(const Planes& planes) {
    int rows = 0;
    const auto count = [&](const std::vector<std::uint8_t>& plane, int width) {
        for (std::size_t at = width; at < plane.size(); at += width + Planes::margin) {
            rows += std::all_of(&plane[at], &plane[at] + Planes::margin, [](auto b) { return b == Planes::untouched; });
        }
    };
    count(planes.luma, planes.width);
    count(planes.blue, planes.width / 2);
    count(planes.red, planes.width / 2);
    return rows;
}

TEST(YuvConverter, isWithinItsRoundingAtEverySizeAndEdge) {
    for (const YuvMatrix matrix : {YuvMatrix::Bt601, YuvMatrix::Bt709}) {
        for (int width = 1; width <= 70; ++width) {
            for (int height : {1, 2, 5}) {
                const ImageBuffer image = noise(width, height);
                const Planes planes = convert(image, matrix);
                ASSERT_LE(largestError(image, planes, matrix), 0.52) << width << " x " << height;
                ASSERT_EQ(untouchedMargins(planes), planes.height * 2) << width << " x " << height;
            }
        }
    }
}

TEST(YuvConverter, greyHasNoColour) {
    ImageBuffer image(512, 2);
    for (int x = 0; x < 512; ++x) {
        std::fill_n(image.row(0) + x * 4, 3, static_cast<std::uint8_t>(x / 2));
        std::fill_n(image.row(1) + x * 4, 3, static_cast<std::uint8_t>(x / 2));
    }
    const Planes planes = convert(image, YuvMatrix::Bt709);
    EXPECT_EQ(planes.luma[0], 16);
    EXPECT_EQ(planes.luma[511], 235);
    EXPECT_TRUE(std::all_of(&planes.blue[0], &planes.blue[256], [](auto value) { return value == 128; }));
    EXPECT_TRUE(std::all_of(&planes.red[0], &planes.red[256], [](auto value) { return value == 128; }));
}

TEST(YuvConverter, everyInstructionSetGivesTheSameBytes) {
    const ImageBuffer image = noise(199, 7);
    const Planes wanted = convert(image, YuvMatrix::Bt601);
    for (const auto target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().DeInit();
        EXPECT_TRUE(convert(image, YuvMatrix::Bt601) == wanted) << hwy::TargetName(target);
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().DeInit();
}

} // namespace

} // namespace starbloom
