// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/PendingFile.h"
#include "cli/SavedShow.h"
#include "cli/ShowFile.h"
#include "persistence/files/BackgroundColor.h"
#include "persistence/stores/KeyValueStore.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <span>
#include <string>

namespace starbloom {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

Result<StageShape> readText(const TemporaryFolder& folder, const std::string& text, Options& options) {
    EXPECT_TRUE(writeFile(folder / "show.json", std::as_bytes(std::span(text))));
    return readShowFile(folder / "show.json", options);
}

TEST(ShowFile, BringsTheShowBack) {
    const TemporaryFolder folder;
    Options options;
    options.positions.setPosition(Parameter::RocketBirth, 12.3F);
    options.seed = ~std::uint64_t{0};
    options.width = 1281;
    options.height = 77;
    options.pixelsPerPoint = 0.3;
    options.background = {16 / 255.0F, 0.0F, 1.0F, 1.0F};
    options.fadeIn = 2.5;
    options.launchPoint = Point{0.1, -7.0};
    Options again;
    const auto shape = readText(folder, showFileText(options), again);
    ASSERT_TRUE(shape) << shape.error().message;
    again.width = 1281;
    again.height = 77;
    again.pixelsPerPoint = shape.value().pixelsPerPoint;
    again.launchPoint = shape.value().launchPoint;
    EXPECT_EQ(shape.value().stage, options.stage());
    EXPECT_EQ(again.background, options.background);
    EXPECT_EQ(showFileText(again), showFileText(options));
    EXPECT_THAT(showFileText(options), HasSubstr("\"rocketBirthSlider\": 12.3,"));
}

TEST(ShowFile, WhatIsWrongIsToldByName) {
    const struct {
        const char* entries; // Behind the first.
        const char* message;
    } cases[] = {
        {"\"mood\": 1", "\"mood\" is not known"},
        {"\"seed\": -1", "\"seed\" takes a whole number"},
        {"\"seed\": 18446744073709551616", "\"seed\" takes a whole number"},
        {"\"size\": [0, 480]", "\"size\" takes a number from 1 to 65536"},
        {"\"size\": \"640x480\"", "\"size\" takes two numbers"},
        {"\"scale\": 1e400", "show.json"},
        {"\"fadeIn\": -0.5", "\"fadeIn\""},
        {"\"background\": \"red\"", "\"background\" takes a colour"},
        {"\"background\": 7", "\"background\" takes a colour"},
        {"\"launchPoint\": [1, null]", "\"launchPoint\""},
        {"\"positions\": [5]", "\"positions\" takes names"},
        {"\"positions\": {\"rocketBirthSlider\": 41}", "\"rocketBirthSlider\" takes a number from 3 to 40"},
        {"\"positions\": {\"rocketBirth\": 5}", "\"rocketBirth\" is not known"},
        {"\"seed\": 1,", "line 1"},
    };

    const TemporaryFolder folder;
    for (const auto& each : cases) {
        Options options;
        const auto read = readText(folder, std::string("{\"starbloom-show\": 1, ") + each.entries + "}", options);
        ASSERT_FALSE(read) << each.entries;
        EXPECT_THAT(read.error().message, HasSubstr(each.message));
        EXPECT_THAT(read.error().message, StartsWith(folder.path().string()));
    }
    for (const std::string text : {"", "[]", "{}", "{\"starbloom-show\": 2}", "\xFF"}) {
        Options options;
        EXPECT_FALSE(readText(folder, text, options)) << text;
    }
    Options options;
    const auto read = readText(folder, '"' + std::string(50'000, 'x'), options);
    EXPECT_LT(read.error().message.size(), 400U);
}

TEST(SavedShow, IsThatOfTheApplicationWithinItsSliders) {
    const TemporaryFolder home;
    const auto environment = [&](const char* name) {
        return std::string_view(name) == "XDG_DATA_HOME" ? std::optional(home.path().string()) : std::nullopt;
    };
    Options options;
    EXPECT_THAT(showSaved(environment, options).error().message, HasSubstr("saved nothing yet"));

    const AppFolder folder(home.path());
    folder.createAppFolder();
    KeyValueStore store(folder.filePath1(), preferencesDefinition());
    store.openCreate();
    store.save("12.5", "Value11");
    store.save("999", "Value13");
    ASSERT_TRUE(saveBackgroundColor(folder.filePath6(), {0.0F, 0.5F, 0.25F, 1.0F}));
    const std::string before = readFile(folder.filePath1());
    ASSERT_TRUE(showSaved(environment, options));
    EXPECT_EQ(options.positions.position(Parameter::RocketBirth), 12.5F);
    EXPECT_EQ(options.positions.position(Parameter::RocketVelocity), 550.0F);
    EXPECT_EQ(options.positions.position(Parameter::ExplodeGravity), 80.0F);
    EXPECT_EQ(options.background, (Color{0.0F, 0.5F, 0.25F, 1.0F}));
    EXPECT_EQ(readFile(folder.filePath1()), before);

    std::filesystem::resize_file(folder.filePath1(), 100);
    EXPECT_THAT(showSaved(environment, options).error().message, HasSubstr("cannot be read"));
    EXPECT_EQ(home.countIn(folder.filePathA()), 2) << "nothing is put aside or made";
}

} // namespace

} // namespace starbloom
