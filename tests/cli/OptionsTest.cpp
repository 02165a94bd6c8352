// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Options.h"

#include <gmock/gmock.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

Result<Options> parse(std::vector<std::string> arguments) {
    return parseOptions(arguments);
}

TEST(Options, DefaultsAreThoseThatTheHelpNames) {
    const auto parsed = parse({"show.m4v"});
    ASSERT_TRUE(parsed);
    const Options& options = parsed.value();
    EXPECT_EQ(options.kind, OutputKind::Movie);
    EXPECT_EQ(options.width, 640);
    EXPECT_EQ(options.height, 480);
    EXPECT_EQ(options.seed, 1U);
    EXPECT_EQ(options.frameCount(), 300);
    EXPECT_EQ(options.positions.position(Parameter::RocketVelocity), 400.0F);
    EXPECT_EQ(options.background, (Color{0.0F, 0.0F, 0.0F, 1.0F}));
    EXPECT_TRUE(options.warnings.empty());
}

TEST(Options, TheNameTellsWhatComesOut) {
    const auto kindOf = [](const std::string& name) { return parse({name}).value().kind; };
    EXPECT_EQ(kindOf("a.png"), OutputKind::Picture);
    EXPECT_EQ(kindOf("a.PNG"), OutputKind::Picture);
    EXPECT_EQ(kindOf("100%.png"), OutputKind::Picture);
    EXPECT_EQ(kindOf("a%%05d.png"), OutputKind::Picture);
    EXPECT_EQ(kindOf("a.mp4"), OutputKind::Movie);
    EXPECT_EQ(kindOf("folder%05d/a.png"), OutputKind::Picture);
    EXPECT_EQ(kindOf("a%05d.png"), OutputKind::Frames);
}

TEST(Options, FramesAreNumberedFromTheirPlaceInTheName) {
    const auto options = parse({"out/a%03d-x.png"}).value();
    EXPECT_EQ(options.framePath(0), "out/a000-x.png");
    EXPECT_EQ(options.framePath(42), "out/a042-x.png");
    EXPECT_EQ(options.framePath(12345), "out/a12345-x.png");
    EXPECT_EQ(parse({"%d.png"}).value().framePath(7), "7.png");
}

TEST(Options, ReadsEveryOption) {
    const auto parsed = parse({"--size",       "1920x1080",
                               "--from",       "2.5",
                               "--seconds",    "0.5",
                               "--fps",        "60",
                               "--seed",       "18446744073709551615",
                               "--set",        "rocketBirthSlider=12.5",
                               "--set",        "animateSpeedSlider=50",
                               "--fade-in",    "3",
                               "--background", "#102030",
                               "--threads",    "3",
                               "--quiet",      "a.mp4"});
    ASSERT_TRUE(parsed);
    const Options& options = parsed.value();
    EXPECT_EQ(options.width, 1920);
    EXPECT_EQ(options.height, 1080);
    EXPECT_EQ(options.from, 2.5);
    EXPECT_EQ(options.frameCount(), 30);
    EXPECT_EQ(options.seed, ~std::uint64_t{0});
    EXPECT_EQ(options.positions.position(Parameter::RocketBirth), 12.5F);
    EXPECT_EQ(options.positions.position(Parameter::AnimateSpeed), 50.0F);
    EXPECT_EQ(options.fadeIn, 3.0);
    EXPECT_EQ(options.background, (Color{16.0F / 255.0F, 32.0F / 255.0F, 48.0F / 255.0F, 1.0F}));
    EXPECT_EQ(options.threads, 3);
    EXPECT_TRUE(options.quiet);
}

TEST(Options, BadInputSaysWhatIsWrong) {
    const struct {
        std::vector<std::string> arguments;
        const char* message;
    } cases[] = {
        {{}, "OUTPUT"},
        {{"a.xyz"}, "a.xyz"},
        {{"--quality", "4", "a.jpg"}, "from 5 to 100"},
        {{"--quality", "50", "a.png"}, ".jpg, .jp2, .webm, .webp alone"},
        {{"--quality", "50", "a.mp4"}, ".jpg, .jp2, .webm, .webp alone"},
        {{"--transparent", "a.jpg"}, ".png, .tif, .mov"},
        {{"--transparent", "--background", "000000", "a.png"}, "--background"},
        {{"--like", "none.png", "a.png"}, "none.png"},
        {{"a%d%d.png"}, "more than one place"},
        {{"--bogus", "a.png"}, "--bogus"},
        {{"a.png", "b.png"}, "b.png"},
        {{"--size", "0x480", "a.png"}, "WIDTHxHEIGHT"},
        {{"--size", "640", "a.png"}, "WIDTHxHEIGHT"},
        {{"--size", "640x480x2", "a.png"}, "WIDTHxHEIGHT"},
        {{"--size", "20000x100", "a.mp4"}, "16384"},
        {{"--set", "rocketBirth=5", "a.png"}, "no parameter 'rocketBirth'"},
        {{"--set", "rocketBirthSlider", "a.png"}, "NAME=POSITION"},
        {{"--set", "rocketBirthSlider=41", "a.png"}, "from 3 to 40"},
        {{"--set", "rocketBirthSlider=nan", "a.png"}, "not 'nan'"},
        {{"--fade-in", "0.2", "a.mp4"}, "at least 0.5"},
        {{".png"}, "no name"},
        {{"--seed", "-1", "a.png"}, "--seed"},
        {{"--fps", "30.5", "a.mp4"}, "whole number"},
        {{"--at", "inf", "a.png"}, "--at"},
        {{"--seconds", "0.01", "a.mp4"}, "not even one frame"},
        {{"--background", "red", "a.png"}, "hexadecimal"},
        {{"--particles", "a.png"}, "no OUTPUT"},
    };

    for (const auto& each : cases) {
        const auto parsed = parse(each.arguments);
        ASSERT_FALSE(parsed) << each.message;
        EXPECT_THAT(parsed.error().message, HasSubstr(each.message));
    }
}

TEST(Options, OptionsWithoutEffectAreMentioned) {
    EXPECT_EQ(parse({"--at", "3", "a.mp4"}).value().warnings.size(), 1U);
    EXPECT_EQ(parse({"--set", "animateSpeedSlider=0", "a.png"}).value().warnings.size(), 1U);
    EXPECT_EQ(parse({"--fps", "25", "--seconds", "3", "a.png"}).value().warnings.size(), 2U);
}

} // namespace

} // namespace starbloom
