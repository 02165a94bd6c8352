// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/ShowNote.h"

#include "base/PendingFile.h"
#include "export/picture/PictureComments.h"
#include "export/picture/PictureEncoder.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

/// Numbers that show every lost digit.
ShowNote oddNote() {
    ShowNote note;
    note.version = "0.1.0-rc1";
    note.seed = ~std::uint64_t{0};
    note.moment = 1.0 / 3.0;
    note.stage = {1920.1, 1.0};
    note.pixelsPerPoint = 0.1 + 0.2;
    note.launchPoint = {-1e-7, 540.0000000000001};
    note.background = {0.1F, 1.0F / 3.0F, 0.0F, 1.0F};
    note.steady = false;
    for (std::size_t i = 0; i < parameterCount; ++i) {
        note.positions[i] = 1.0F / static_cast<float>(i + 3);
    }
    return note;
}

TEST(ShowNote, comesBackExactlyFromEveryFormatThatHasAPlace) {
    const TemporaryFolder folder;
    for (const PictureFormatRow& each : pictureFormats) {
        const auto path = folder / ("a." + std::string(each.extension));
        const auto note = oddNote();
        ASSERT_TRUE(writeFile(path, encodePicture(ImageBuffer(40, 30), {each.format}, &note).value()));
        const auto read = readShowNote(path);
        if (each.format == PictureFormat::Bmp) {
            EXPECT_THAT(read.error().message, HasSubstr("does not tell"));
        } else {
            ASSERT_TRUE(read) << read.error().message;
            EXPECT_EQ(read.value(), note) << each.extension;
        }
    }
    EXPECT_THAT(readShowNote(folder / "none").error().message, HasSubstr("No such file"));
}

TEST(ShowNote, damagedFilesAreSurvived) {
    const auto note = oddNote();
    for (const PictureFormatRow& each : pictureFormats) {
        const auto file = encodePicture(ImageBuffer(9, 9), {each.format}, &note).value();
        for (std::size_t length = 0; length < file.size(); ++length) {
            pictureComments(std::span(file).first(length));
        }
        for (std::size_t at = 0; at < file.size(); ++at) {
            for (const std::byte damage : {std::byte{0x01}, std::byte{0x80}, std::byte{0xFF}}) {
                auto damaged = file;
                damaged[at] ^= damage;
                for (const std::string& comment : pictureComments(damaged)) {
                    EXPECT_LE(comment.size(), 4096U);
                    (void)parseShowNote(comment);
                }
            }
        }
    }
}

TEST(ShowNote, aTextIsTakenWholeOrNotAtAll) {
    const std::string good = toText(oddNote());
    const auto refused = [&](const std::string& from, const std::string& to, const std::string& blamed) {
        std::string text = good;
        text.replace(text.find(from), from.size(), to);
        const auto note = parseShowNote(text);
        return !note && note.error().message.find("'" + blamed) != std::string::npos;
    };
    ASSERT_EQ(parseShowNote(good).value(), oddNote());
    EXPECT_TRUE(refused(" seed=", " sed=", "seed"));
    EXPECT_TRUE(refused(" seed=", " seed=-", "seed"));
    EXPECT_TRUE(refused(" moment=", " moment=nan", "moment"));
    EXPECT_TRUE(refused(" moment=", " moment=1e99 x=", "moment"));
    EXPECT_TRUE(refused("1920.1x1", "1920.1x1x", "stage"));
    EXPECT_TRUE(refused("1920.1x1", "1920.1", "stage"));
    EXPECT_TRUE(refused("1920.1x1", "1920.1x0", "stage"));
    EXPECT_TRUE(refused("steady=no", "steady=no steady=no", "steady"));
    EXPECT_TRUE(refused("steady=no", "steady=maybe", "steady"));
    EXPECT_TRUE(refused("steady=no", "steady=no more=1", "more"));
    EXPECT_TRUE(refused("steady=no", "steady=no  seed", "-"));
    EXPECT_FALSE(parseShowNote(good.substr(0, good.size() / 2)));
    EXPECT_FALSE(parseShowNote(good + std::string(5000, 'x')));
    EXPECT_FALSE(parseShowNote(""));
}

} // namespace

} // namespace starbloom
