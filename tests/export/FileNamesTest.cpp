// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/FileNames.h"

#include <gtest/gtest.h>

namespace starbloom {

namespace {

TEST(FileNames, onlySomeNamesCanBeUsed) {
    using namespace std::string_view_literals;
    for (const auto name : {"Fire"sv, " a"sv, "a."sv, "\xE7\x81\xAB"sv, "\xFF"sv}) {
        EXPECT_TRUE(validateName4(name, 1) && namesAFile(name)) << name;
    }
    for (const auto name : {""sv, "."sv, ".."sv, ".Fire"sv, " "sv, "\t \t"sv, "a:b"sv}) {
        EXPECT_FALSE(validateName4(name, 1) || namesAFile(name)) << name;
    }
    for (const auto name : {"a/b"sv, "/a"sv, "a\0b"sv}) {
        EXPECT_TRUE(validateName4(name, 1) && !namesAFile(name)) << name;
    }
    EXPECT_FALSE(validateName4("\xE7\x81\xAB", 2)); // One character of three bytes.
}

TEST(FileNames, numbersHaveThreeDigitsOrMore) {
    EXPECT_EQ(candidateName("Fire", 0, "png", false), "Fire.png");
    EXPECT_EQ(candidateName("Fire.x", 0, "png", true), "Fire.x_001.png");
    for (const auto& [n, name] : {std::pair(1, "a_001.b"), {42, "a_042.b"}, {100, "a_100.b"}, {1234, "a_1234.b"}}) {
        EXPECT_EQ(candidateName("a", n, "b", n % 2 == 0), name);
    }
}

} // namespace

} // namespace starbloom
