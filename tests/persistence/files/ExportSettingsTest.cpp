// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/ExportSettings.h"

#include "persistence/files/PropertyList.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace starbloom {

namespace {

TEST(ExportSettings, ComeBackAndAreSixTextsWithTheNameFourTimes) {
    const TemporaryFolder folder;
    const auto file = folder / "Data4.data";
    EXPECT_FALSE(loadExportSettings(file));
    const ExportSettings settings{2, 19, "<Feu & \"étoiles\">"};
    ASSERT_TRUE(saveExportSettings(file, settings));
    EXPECT_EQ(loadExportSettings(file), settings);
    const std::string bytes = readFile(file);
    const auto list = PropertyList::fromXml(std::as_bytes(std::span(bytes)));
    ASSERT_TRUE(list);
    EXPECT_EQ(list.value().root().elementCount(), 6U);
    EXPECT_EQ(list.value().root().element(1).text(), "19");
    for (std::size_t copy = 2; copy < 6; ++copy) {
        EXPECT_EQ(list.value().root().element(copy).text(), settings.name);
    }
}

TEST(ExportSettings, WhatIsNoneActsAsMissing) {
    const LogCapture log;
    for (const auto& [format, compression] : {std::pair("6", "0"), {"4", "20"}, {"-1", "0"}, {"PNG", "0"}, {"4", ""}}) {
        auto list = PropertyList::array();
        for (const char* entry : {format, compression, "Fire"}) {
            list.append(PropertyList::text(entry));
        }
        EXPECT_FALSE(decodeExportSettings(list.toXml().value())) << format << ' ' << compression;
    }
    auto two = PropertyList::array();
    two.append(PropertyList::text("4"));
    two.append(PropertyList::text("0"));
    EXPECT_FALSE(decodeExportSettings(two.toXml().value()));
}

} // namespace

} // namespace starbloom
