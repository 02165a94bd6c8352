// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/BackgroundColor.h"

#include "persistence/files/PropertyList.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <limits>

namespace starbloom {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const Color orange{.red = 1.0F, .green = 0.5F, .blue = 0.1F, .alpha = 1.0F};

PropertyList bytesValue(const std::string& text) {
    return PropertyList::data(std::as_bytes(std::span(text)));
}

/// An archive that can be wrong in one respect at a time.
struct Archive {
    std::string archiver = "NSKeyedArchiver";
    std::uint64_t version = 100000;
    std::string arrayClass = "NSArray";
    std::string colorClass = "NSColor";
    std::uint64_t rootUid = 1;
    std::vector<std::uint64_t> colorUids{2, 2, 2, 2};
    std::uint64_t colorClassUid = 3;
    std::uint64_t space = 1;
    PropertyList components = bytesValue(std::string("1 0.5 0.1\0", 10));

    Result<Color> decoded() && {
        auto objects = PropertyList::array();
        objects.append(PropertyList::text("$null"));
        objects.append(arrayObject());
        objects.append(colorObject());
        objects.append(classObject(colorClass));
        objects.append(classObject(arrayClass));
        auto top = PropertyList::dictionary();
        top.set("root", PropertyList::uid(rootUid));
        auto archive = PropertyList::dictionary();
        archive.set("$version", PropertyList::number(version));
        archive.set("$archiver", PropertyList::text(archiver));
        archive.set("$top", std::move(top));
        archive.set("$objects", std::move(objects));
        return decodeBackgroundColor(archive.toBinary().value());
    }

private:
    PropertyList arrayObject() const {
        auto references = PropertyList::array();
        for (const auto uid : colorUids) {
            references.append(PropertyList::uid(uid));
        }
        auto object = PropertyList::dictionary();
        object.set("NS.objects", std::move(references));
        object.set("$class", PropertyList::uid(4));
        return object;
    }

    PropertyList colorObject() {
        auto object = PropertyList::dictionary();
        object.set("NSColorSpace", PropertyList::number(space));
        object.set("NSRGB", std::move(components));
        object.set("$class", PropertyList::uid(colorClassUid));
        return object;
    }

    static PropertyList classObject(const std::string& name) {
        auto object = PropertyList::dictionary();
        object.set("$classname", PropertyList::text(name));
        return object;
    }
};

Result<Color> decodedComponents(const std::string& text) {
    return Archive{.components = bytesValue(text)}.decoded();
}

TEST(BackgroundColor, isWrittenAsAnArrayOfFourReferencesToOneCalibratedColour) {
    const auto archive = PropertyList::fromBinary(encodeBackgroundColor(orange).value());
    ASSERT_TRUE(archive);
    const auto root = archive.value().root();
    EXPECT_EQ(root.entry("$version").number(), 100000);
    EXPECT_EQ(root.entry("$archiver").text(), "NSKeyedArchiver");
    const auto objects = root.entry("$objects");
    EXPECT_EQ(objects.element(0).text(), "$null");
    const auto array = objects.element(root.entry("$top").entry("root").uid().value());
    const auto arrayClass = objects.element(array.entry("$class").uid().value());
    EXPECT_EQ(arrayClass.entry("$classname").text(), "NSArray");
    EXPECT_EQ(arrayClass.entry("$classes").element(1).text(), "NSObject");
    const auto references = array.entry("NS.objects");
    ASSERT_EQ(references.elementCount(), 4);
    const auto first = references.element(0).uid().value();
    for (std::size_t i = 1; i < 4; ++i) {
        EXPECT_EQ(references.element(i).uid(), first);
    }
    const auto color = objects.element(first);
    EXPECT_EQ(objects.element(color.entry("$class").uid().value()).entry("$classname").text(), "NSColor");
    EXPECT_EQ(color.entry("NSColorSpace").number(), 1);
    const auto components = color.entry("NSRGB").data().value();
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(components.data()), components.size()),
              std::string("1 0.5 0.1\0", 10));
}

TEST(BackgroundColor, componentsSurviveExactlyAndAlphaOnlyWhenItMatters) {
    for (const auto& color : {orange, Color{0.1F, 1.0F / 3.0F, 1e-7F, 0.25F}, Color{0.0F, 0.0F, 0.0F, 0.0F}}) {
        const auto read = decodeBackgroundColor(encodeBackgroundColor(color).value());
        ASSERT_TRUE(read);
        EXPECT_EQ(read.value(), color);
    }
    const auto clamped = decodeBackgroundColor(encodeBackgroundColor({-0.5F, 2.0F, 0.5F, 9.0F}).value());
    EXPECT_EQ(clamped.value(), (Color{0.0F, 1.0F, 0.5F, 1.0F}));
    EXPECT_FALSE(encodeBackgroundColor({.red = std::numeric_limits<float>::quiet_NaN()}));
    EXPECT_FALSE(encodeBackgroundColor({.alpha = std::numeric_limits<float>::infinity()}));
}

TEST(BackgroundColor, readsEquivalentForms) {
    EXPECT_EQ(Archive{}.decoded().value(), orange);
    EXPECT_EQ(Archive{.arrayClass = "NSMutableArray"}.decoded().value(), orange);
    EXPECT_EQ((Archive{.colorUids = {2, 0, 99, 1}}.decoded().value()), orange) << "only the first counts";
    EXPECT_EQ(Archive{.space = 2}.decoded().value(), orange);
    EXPECT_EQ(Archive{.components = PropertyList::text("1 0.5 0.1")}.decoded().value(), orange);
    EXPECT_EQ(decodedComponents("1 0.5 0.1").value(), orange);
    EXPECT_EQ(decodedComponents("  1.0   5e-1 0.1 1 ").value(), orange);
    EXPECT_EQ(decodedComponents("1.0000001 -0.25 0 0.5").value(), (Color{1.0F, 0.0F, 0.0F, 0.5F}));
}

TEST(BackgroundColor, anythingElseIsAnError) {
    EXPECT_FALSE(Archive{.archiver = "Archiver"}.decoded());
    EXPECT_FALSE(Archive{.version = 1}.decoded());
    EXPECT_FALSE(Archive{.arrayClass = "NSSet"}.decoded());
    EXPECT_FALSE(Archive{.colorClass = "NSString"}.decoded());
    EXPECT_FALSE(Archive{.colorUids = {}}.decoded());
    EXPECT_FALSE(Archive{.space = 3}.decoded());
    EXPECT_FALSE(Archive{.components = PropertyList::number(1)}.decoded());
    for (const std::uint64_t uid : {0U, 1U, 4U, 5U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(Archive{.rootUid = uid == 1 ? 2 : uid}.decoded()) << uid;
        EXPECT_FALSE(Archive{.colorUids = {uid}}.decoded()) << uid;
        EXPECT_FALSE(Archive{.colorClassUid = uid}.decoded()) << uid;
    }
    for (const auto* text : {"", "1 1", "1 1 1 1 1", "1,1,1", "a b c", "1 1 nan", "inf 0 0", "1e99 0 0", "1 1 1x"}) {
        EXPECT_FALSE(decodedComponents(text)) << text;
    }
    EXPECT_FALSE(decodedComponents(std::string("1 1\0 1", 6)));
}

class BackgroundColorFile : public testing::Test {
protected:
    TemporaryFolder folder;
    std::filesystem::path file = folder / "Data6.data";
    LogCapture log;
};

TEST_F(BackgroundColorFile, keepsTheLastColourAndSaysNothingWhenMissing) {
    EXPECT_FALSE(loadBackgroundColor(file));
    ASSERT_TRUE(saveBackgroundColor(file, {0.0F, 0.0F, 1.0F, 1.0F}));
    ASSERT_TRUE(saveBackgroundColor(file, orange));
    EXPECT_EQ(loadBackgroundColor(file), orange);
    EXPECT_EQ(folder.entryCount(), 1);
    EXPECT_THAT(log.text(), IsEmpty());
    {
        const FileSizeLimit disk(64);
        EXPECT_FALSE(saveBackgroundColor(file, {0.0F, 1.0F, 0.0F, 1.0F}));
    }
    EXPECT_EQ(loadBackgroundColor(file), orange);
    EXPECT_EQ(folder.entryCount(), 1);
}

TEST_F(BackgroundColorFile, truncatedFilesActAsMissingAndAreKeptWhenReplaced) {
    ASSERT_TRUE(saveBackgroundColor(file, orange));
    const auto whole = readFile(file);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::ofstream(file, std::ios::binary) << whole.substr(0, length);
        EXPECT_FALSE(loadBackgroundColor(file)) << length;
    }
    EXPECT_THAT(log.text(), HasSubstr("cannot read " + file.string() + ": "));
    ASSERT_TRUE(saveBackgroundColor(file, orange));
    EXPECT_EQ(loadBackgroundColor(file), orange);
    EXPECT_EQ(readFile(folder / "Data6.data.damaged-1"), whole.substr(0, whole.size() - 1));
}

TEST_F(BackgroundColorFile, aFolderInItsPlaceActsAsMissing) {
    std::filesystem::create_directory(file);
    EXPECT_FALSE(loadBackgroundColor(file));
    EXPECT_THAT(log.text(), HasSubstr(file.string()));
    EXPECT_TRUE(saveBackgroundColor(file, orange));
    EXPECT_EQ(loadBackgroundColor(file), orange);
}

} // namespace

} // namespace starbloom
