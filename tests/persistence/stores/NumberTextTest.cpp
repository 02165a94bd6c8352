// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/NumberText.h"

#include <gmock/gmock.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <string>

namespace starbloom {

namespace {

TEST(NumberText, wholeNumbers) {
    EXPECT_EQ(integerValue("14"), 14);
    EXPECT_EQ(integerValue(" \t-7 px"), -7);
    EXPECT_EQ(integerValue("+3.9"), 3);
    for (const char* text : {"", " ", "-", "+-5", "--5", "/home", "nan", "0x10", ".5"}) {
        EXPECT_EQ(integerValue(text), 0) << text;
    }
    EXPECT_EQ(integerValue("99999999999999999999"), std::numeric_limits<int>::max());
    EXPECT_EQ(integerValue("-99999999999999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(integerValue("-2147483648"), std::numeric_limits<int>::min());
}

TEST(NumberText, decimalNumbers) {
    EXPECT_EQ(floatValue("400"), 400.0F);
    EXPECT_EQ(floatValue("  -12.5 points"), -12.5F);
    EXPECT_EQ(floatValue("+.5"), 0.5F);
    EXPECT_EQ(floatValue("1e3x"), 1000.0F);
    EXPECT_EQ(floatValue("2e"), 2.0F);
    EXPECT_EQ(floatValue("1,5"), 1.0F);
    for (const char* text : {"", ".", "-", "e5", "inf", "-Infinity", "nan", "+nan", "+-5", "/home"}) {
        EXPECT_EQ(floatValue(text), 0.0F) << text;
    }
}

TEST(NumberText, decimalNumbersBeyondAFloatStayFinite) {
    constexpr float largest = std::numeric_limits<float>::max();
    for (const std::string& text : {std::string("1e39"), std::string("1e999"), std::string("1e+99999999999"),
                                    std::string(400, '9'), "1" + std::string(400, '0') + "e-5"}) {
        EXPECT_EQ(floatValue(text), largest) << text;
        EXPECT_EQ(floatValue("-" + text), -largest) << text;
    }
    for (const std::string& text : {std::string("1e-99"), std::string("123456e-999"), std::string("1e-99999999999"),
                                    "0." + std::string(400, '0') + "1"}) {
        EXPECT_EQ(floatValue(text), 0.0F) << text;
    }
}

TEST(NumberText, textOfANumberHasUpToSevenDigitsAndNoMore) {
    EXPECT_EQ(textOfFloat(400.0F), "400");
    EXPECT_EQ(textOfFloat(12.5F), "12.5");
    EXPECT_EQ(textOfFloat(0.1F), "0.1");
    EXPECT_EQ(textOfFloat(1.0F / 3.0F), "0.3333333");
    EXPECT_EQ(textOfFloat(-612.25F), "-612.25");
    EXPECT_EQ(textOfFloat(1234567.0F), "1234567");
    EXPECT_EQ(textOfFloat(1e7F), "1e+07");
    EXPECT_EQ(textOfFloat(0.000015F), "1.5e-05");
    for (const float nothing : {0.0F, -0.0F, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        EXPECT_EQ(textOfFloat(nothing), "0");
    }
}

TEST(NumberText, positionsOfSlidersSurviveTheirText) {
    for (int tenths = -20'000; tenths <= 20'000; ++tenths) {
        const float position = static_cast<float>(tenths) / 10.0F;
        ASSERT_EQ(floatValue(textOfFloat(position)), position);
    }
}

TEST(NumberText, theUsersLanguageDoesNotMatter) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr && std::setlocale(LC_ALL, "fr_FR.UTF-8") == nullptr) {
        GTEST_SKIP() << "no language with a decimal comma is installed";
    }
    EXPECT_EQ(floatValue("12.5"), 12.5F);
    EXPECT_EQ(textOfFloat(12.5F), "12.5");
    std::setlocale(LC_ALL, before.c_str());
}

} // namespace

} // namespace starbloom
