// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/PropertyList.h"

#include <gtest/gtest.h>

#include <string>

namespace starbloom {

namespace {

std::span<const std::byte> bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

std::string xmlList(const std::string& content) {
    return "<plist version=\"1.0\">" + content + "</plist>";
}

/// A binary property list of the given values, whose offsets and references have two bytes, with the first as root.
std::string binaryList(const std::vector<std::string>& values) {
    const auto two = [](std::size_t number) {
        return std::string{static_cast<char>(number >> 8), static_cast<char>(number)};
    };
    std::string bytes = "bplist00";
    std::string table;
    for (const auto& value : values) {
        table += two(bytes.size());
        bytes += value;
    }
    const auto tableAt = bytes.size();
    const auto eight = [&two](std::size_t number) { return std::string(6, '\0') + two(number); };
    return bytes + table + std::string(6, '\0') + "\x02\x02" + eight(values.size()) + eight(0) + eight(tableAt);
}

bool binaryIsRead(const std::string& bytes) {
    return static_cast<bool>(PropertyList::fromBinary(bytesOf(bytes)));
}

TEST(PropertyList, everyKindOfValueSurvivesBothForms) {
    auto record = PropertyList::dictionary();
    record.set("text", PropertyList::text(" <caf\u00e9> & \"x\" "));
    record.set("empty", PropertyList::text(""));
    record.set("data", PropertyList::data(bytesOf(std::string("a\0\xFF", 3))));
    record.set("none", PropertyList::data({}));
    record.set("number", PropertyList::number(100000));
    auto list = PropertyList::array();
    list.append(std::move(record));
    const auto xml = PropertyList::fromXml(list.toXml().value());
    const auto binary = PropertyList::fromBinary(list.toBinary().value());
    ASSERT_TRUE(xml && binary);
    for (const auto& read : {xml.value().root(), binary.value().root()}) {
        const auto entries = read.element(0);
        EXPECT_EQ(read.elementCount(), 1);
        EXPECT_EQ(entries.entry("text").text(), " <caf\u00e9> & \"x\" ");
        EXPECT_EQ(entries.entry("empty").text(), "");
        EXPECT_EQ(entries.entry("data").data()->size(), 3);
        EXPECT_TRUE(entries.entry("none").data()->empty());
        EXPECT_EQ(entries.entry("number").number(), 100000);
    }
}

TEST(PropertyList, questionsThatDoNotFitAnswerWithNothing) {
    auto list = PropertyList::array();
    list.append(PropertyList::text("x"));
    list.append(PropertyList::number(static_cast<std::uint64_t>(-1)));
    const auto root = list.root();
    EXPECT_FALSE(root.element(2).text());
    EXPECT_FALSE(root.element(std::size_t{1} << 32).text()) << "an index is not cut to fewer bits";
    EXPECT_FALSE(root.entry("key").element(0).entry("key").data());
    EXPECT_FALSE(root.element(0).number() || root.element(0).uid() || root.element(0).data());
    EXPECT_FALSE(root.element(1).number()) << "negative";
    EXPECT_EQ(PropertyListNode().elementCount(), 0);
}

TEST(PropertyList, xmlWithoutItsEndOrWithTooManyContainersIsRefused) {
    const auto read = [](const std::string& text) { return static_cast<bool>(PropertyList::fromXml(bytesOf(text))); };
    EXPECT_TRUE(read(xmlList("<array/>") + " \r\n"));
    EXPECT_FALSE(read("<plist version=\"1.0\"><string>cut short</string>"));
    EXPECT_FALSE(read(""));
    EXPECT_FALSE(read(xmlList("")));
    EXPECT_TRUE(read(xmlList(repeated("<array>", 1000) + repeated("</array>", 1000))));
    EXPECT_FALSE(read(xmlList(repeated("<array>", 1001) + repeated("</array>", 1001))));
    EXPECT_FALSE(read(xmlList(repeated("<dict><key>k</key>", 50000) + repeated("</dict>", 50000))));
    EXPECT_FALSE(read(xmlList("<string>" + std::string(PropertyList::largestSize, 'x') + "</string>")));
}

TEST(PropertyList, binaryThatContainsItselfIsRefused) {
    const std::string one("\xA1\x00\x01", 3);
    EXPECT_TRUE(binaryIsRead(binaryList({one, "\x51x"})));
    EXPECT_FALSE(binaryIsRead(binaryList({std::string("\xA1\x00\x00", 3)})));
    EXPECT_FALSE(binaryIsRead(binaryList({one, std::string("\xA1\x00\x00", 3)})));
    EXPECT_FALSE(binaryIsRead(binaryList({std::string("\xD1\x00\x01\x00\x00", 5), "\x51k"})));
    EXPECT_FALSE(binaryIsRead(binaryList({one}))) << "a reference beyond the values";
}

TEST(PropertyList, binaryThatUnfoldsOrNestsWithoutEndIsRefused) {
    const auto nested = [](int levels, bool twice) {
        std::vector<std::string> values;
        for (int i = 1; i <= levels; ++i) {
            const std::string next{static_cast<char>(i >> 8), static_cast<char>(i)};
            values.push_back((twice ? "\xA2" + next : "\xA1") + next);
        }
        values.emplace_back("\x51x");
        return binaryList(values);
    };
    EXPECT_TRUE(binaryIsRead(nested(10, true)));
    EXPECT_FALSE(binaryIsRead(nested(40, true))) << "2^40 values";
    EXPECT_TRUE(binaryIsRead(nested(60, false)));
    EXPECT_FALSE(binaryIsRead(nested(10000, false)));

    // One text of 4,096 bytes, two hundred and a thousand times.
    const auto shared = [](int count) {
        const std::string length{static_cast<char>(count >> 8), static_cast<char>(count)};
        const std::string text = std::string("\x5F\x11\x10\x00", 4) + std::string(4096, 'x');
        return binaryList({"\xAF\x11" + length + repeated(std::string("\x00\x01", 2), count), text});
    };
    EXPECT_TRUE(binaryIsRead(shared(200)));
    EXPECT_FALSE(binaryIsRead(shared(1000)));
}

TEST(PropertyList, everyByteOfABinaryListMayBeWrong) {
    auto list = PropertyList::array();
    list.append(PropertyList::text("a text of more than fifteen characters"));
    list.append(PropertyList::data(bytesOf("data")));
    list.append(PropertyList::uid(7));
    const auto sound = list.toBinary().value();
    for (std::size_t at = 0; at < sound.size(); ++at) {
        for (const int value : {0x00, 0x0F, 0x1F, 0x5F, 0x7F, 0x80, 0xA1, 0xDF, 0xFF}) {
            auto bytes = sound;
            bytes[at] = static_cast<std::byte>(value);
            const auto read = PropertyList::fromBinary(bytes);
            EXPECT_TRUE(!read || read.value().root().elementCount() < 1000);
        }
        EXPECT_FALSE(PropertyList::fromBinary(std::span(sound).first(at))) << at;
    }
}

} // namespace

} // namespace starbloom
