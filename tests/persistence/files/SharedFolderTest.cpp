// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/SharedFolder.h"

#include "persistence/files/PropertyList.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>

namespace starbloom {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::span<const std::byte> bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

/// A record with any path and, unless it is null, any bookmark.
Result<std::filesystem::path> decodedRecord(const std::string& path, const char* bookmark) {
    auto record = PropertyList::dictionary();
    record.set("path", PropertyList::text(path));
    if (bookmark != nullptr) {
        record.set("bookmark", PropertyList::data(bytesOf(bookmark)));
    }
    auto list = PropertyList::array();
    list.append(std::move(record));
    return decodeSharedFolder(list.toXml().value());
}

class SharedFolderTest : public testing::Test {
protected:
    std::filesystem::path makeFolder(const std::string& name) const {
        std::filesystem::create_directory(folder / name);
        return folder / name;
    }

    void write(const std::string& content) const { std::ofstream(file, std::ios::binary) << content; }

    TemporaryFolder folder;
    std::filesystem::path file = folder / "Data3.data";
    LogCapture log;
};

TEST_F(SharedFolderTest, isWrittenAsAnXmlArrayOfOneDictionaryOfTwoEntries) {
    const auto pictures = makeFolder("Pictures & <more>");
    const auto shown = saveSharedFolder(file, pictures);
    EXPECT_EQ(shown.folder, pictures);
    EXPECT_EQ(shown.text(), pictures.string());
    const auto text = readFile(file);
    EXPECT_THAT(text, HasSubstr("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    const auto list = PropertyList::fromXml(bytesOf(text));
    ASSERT_TRUE(list);
    EXPECT_EQ(list.value().root().elementCount(), 1);
    const auto record = list.value().root().element(0);
    EXPECT_EQ(record.entry("path").text(), pictures.string());
    EXPECT_TRUE(record.entry("bookmark").data());
    EXPECT_THAT(log.text(), IsEmpty());
}

TEST_F(SharedFolderTest, aMissingFileOrFolderShowsThePlaceholder) {
    const std::string placeholder = std::string("/Users/") + "???" + "/" + "???";
    EXPECT_EQ(loadSharedFolder(file).text(), placeholder);
    const auto pictures = makeFolder("Pictures");
    EXPECT_EQ(saveSharedFolder(file, pictures).folder, pictures);
    std::filesystem::remove(pictures);
    EXPECT_EQ(loadSharedFolder(file).text(), placeholder);
    EXPECT_FALSE(loadSharedFolder(file).folder);
    EXPECT_EQ(saveSharedFolder(folder / "none" / "Data3.data", folder.path()).text(), placeholder);
    EXPECT_THAT(log.text(), HasSubstr("Data3.data"));
}

TEST_F(SharedFolderTest, namesThatAreNoTextSurvive) {
    for (const auto* name : {"caf\xE9", "\xC0\xAF", "\xED\xA0\x80", "line\nend\r\t\x01", " blank ", "\xEF\xBF\xBE",
                             "\xF4\x90\x80\x80", "cut\xE2\x82", "\xEF\xBF\xBD"}) {
        const auto pictures = makeFolder(name);
        EXPECT_EQ(saveSharedFolder(file, pictures).folder, pictures) << name;
        EXPECT_EQ(loadSharedFolder(file).folder, pictures) << name;
    }
    EXPECT_EQ(pathText("/caf\xE9/\xE2\x82\xAC"), "/caf\uFFFD/\u20AC");
    EXPECT_EQ(pathText("\xC0\xAF\xF0\x9F\x8E\x86\x01"), "\uFFFD\uFFFD\U0001F386\uFFFD");
    EXPECT_THAT(log.text(), IsEmpty());
}

TEST_F(SharedFolderTest, theBookmarkCountsOnlyWhenItNamesTheSameFolder) {
    EXPECT_EQ(decodedRecord("/srv/caf\uFFFD", "/srv/caf\xE9").value(), "/srv/caf\xE9");
    EXPECT_EQ(decodedRecord("/srv/new", "/srv/old").value(), "/srv/new");
    EXPECT_EQ(decodedRecord("/srv/new", "book\x01mark of another system").value(), "/srv/new");
    EXPECT_EQ(decodedRecord("/srv/new", "").value(), "/srv/new");
    EXPECT_EQ(decodedRecord("/srv/new", nullptr).value(), "/srv/new");
    EXPECT_FALSE(convertBookmarkToPath({}));
    EXPECT_FALSE(convertBookmarkToPath(bytesOf(std::string("/srv\0/x", 7))));
}

TEST_F(SharedFolderTest, damagedFilesActAsMissingAndAreKeptWhenReplaced) {
    const auto pictures = makeFolder("Pictures");
    saveSharedFolder(file, pictures);
    const auto whole = readFile(file);
    for (std::size_t length = 0; length < whole.find_last_of('>'); ++length) {
        write(whole.substr(0, length));
        EXPECT_FALSE(loadSharedFolder(file).folder) << length;
    }
    const std::string start = "<plist version=\"1.0\">";
    for (const auto* content : {"<array/>", "<dict/>", "<string>/</string>", "<array><string>/</string></array>",
                                "<array><dict><key>path</key><data>Lw==</data></dict></array>",
                                "<array><dict><key>bookmark</key><data>Lw==</data></dict></array>"}) {
        write(start + content + "</plist>");
        EXPECT_FALSE(loadSharedFolder(file).folder) << content;
    }
    write("<plist version=\"1.0\"><array><dict><key>path</key><string>/\1\xFF</string>garbage");
    EXPECT_FALSE(loadSharedFolder(file).folder);
    EXPECT_THAT(log.text(), HasSubstr("cannot read " + file.string() + ": "));
    EXPECT_EQ(saveSharedFolder(file, pictures).folder, pictures);
    EXPECT_THAT(readFile(folder / "Data3.data.damaged-1"), HasSubstr("garbage"));
}

TEST_F(SharedFolderTest, aFolderInItsPlaceActsAsMissingAndAFullDiskKeepsTheOldFile) {
    std::filesystem::create_directory(file);
    EXPECT_FALSE(loadSharedFolder(file).folder);
    const auto first = makeFolder("first");
    EXPECT_EQ(saveSharedFolder(file, first).folder, first);
    const FileSizeLimit disk(16);
    EXPECT_EQ(saveSharedFolder(file, makeFolder("second")).folder, first);
    EXPECT_EQ(folder.entryCount(), 4) << "two folders, the file, and the folder that was in its place";
}

TEST_F(SharedFolderTest, thePanelStartsInTheFirstFolderThatExists) {
    const auto shown = makeFolder("shown");
    const auto preferred = makeFolder("preferred");
    const auto documents = makeFolder("documents");
    EXPECT_EQ(startFolder(shown, preferred, documents), shown);
    EXPECT_EQ(startFolder(unknownFolderText, preferred, documents), preferred);
    EXPECT_EQ(startFolder(unknownFolderText, "", documents), documents);
    write("a file is no folder");
    EXPECT_EQ(startFolder(file, folder / "none", documents), documents);
    EXPECT_FALSE(startFolder("", "", ""));
}

} // namespace

} // namespace starbloom
