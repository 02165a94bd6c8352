// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/PropertyListGuard.h"

#include "persistence/files/PropertyList.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace starbloom {

namespace {

// The library parses XML with a list of open containers, but frees what it has parsed by recursion.
constexpr std::size_t mostXmlContainers = 1000;
constexpr int deepestBinary = 64;
// The library makes a new value for each reference to a shared one, which doubles with each level of a small file.
constexpr std::size_t mostBinaryValues = 100000;

Error tooLarge() {
    return Error{"the property list is too large"};
}

std::size_t countOf(std::string_view text, std::string_view what) {
    std::size_t count = 0;
    for (auto at = text.find(what); at != std::string_view::npos; at = text.find(what, at + what.size())) {
        ++count;
    }
    return count;
}

/// A binary property list's bytes: a header, the values, a table of the values' offsets, and a trailer with the sizes
/// of all that. Numbers are big-endian.
class BinaryWalk {
public:
    explicit BinaryWalk(std::span<const std::byte> bytes)
        : m_bytes(bytes) {}

    /// Reads the trailer and follows the root.
    bool isHarmless();

private:
    static constexpr std::size_t headerSize = 8;
    static constexpr std::size_t trailerSize = 32;

    std::uint64_t numberAt(std::uint64_t offset, std::uint64_t size) const;
    bool readTrailer();
    bool visit(std::uint64_t value, int depth);
    bool visitReferences(std::uint64_t first, std::uint64_t count, int depth);
    bool takeLength(std::uint64_t& offset, std::uint64_t& length) const;
    bool spend(std::uint64_t length);

    std::span<const std::byte> m_bytes;
    std::uint64_t m_offsetSize = 0;
    std::uint64_t m_referenceSize = 0;
    std::uint64_t m_valueCount = 0;
    std::uint64_t m_root = 0;
    std::uint64_t m_table = 0;
    std::size_t m_visited = 0;
    std::uint64_t m_unfolded = 0;
};

/// The range must lie within the bytes; sizes beyond 8 keep the lowest 8 bytes.
std::uint64_t BinaryWalk::numberAt(std::uint64_t offset, std::uint64_t size) const {
    std::uint64_t number = 0;
    for (std::uint64_t i = 0; i < size; ++i) {
        number = number << 8 | std::to_integer<std::uint64_t>(m_bytes[offset + i]);
    }
    return number;
}

bool BinaryWalk::readTrailer() {
    const auto header = std::string_view(reinterpret_cast<const char*>(m_bytes.data()), m_bytes.size());
    if (m_bytes.size() < headerSize + trailerSize || !header.starts_with("bplist00")) {
        return false;
    }
    const std::uint64_t trailer = m_bytes.size() - trailerSize;
    m_offsetSize = numberAt(trailer + 6, 1);
    m_referenceSize = numberAt(trailer + 7, 1);
    m_valueCount = numberAt(trailer + 8, 8);
    m_root = numberAt(trailer + 16, 8);
    m_table = numberAt(trailer + 24, 8);
    return m_offsetSize >= 1 && m_offsetSize <= 8 && m_referenceSize >= 1 && m_referenceSize <= 8 &&
           m_table >= headerSize && m_table <= trailer && m_valueCount <= (trailer - m_table) / m_offsetSize;
}

bool BinaryWalk::isHarmless() {
    return readTrailer() && visit(m_root, 0);
}

/// The length after a marker whose lower half does not hold it: a second marker and a number.
bool BinaryWalk::takeLength(std::uint64_t& offset, std::uint64_t& length) const {
    if (length != 0xF) {
        return true;
    }
    if (offset >= m_table) {
        return false;
    }
    const auto marker = numberAt(offset, 1);
    const auto size = std::uint64_t{1} << (marker & 0xF);
    if (marker >> 4 != 1 || size > 8 || size > m_table - offset - 1) {
        return false;
    }
    length = numberAt(offset + 1, size);
    offset += 1 + size;
    return true;
}

bool BinaryWalk::spend(std::uint64_t length) {
    m_unfolded += length;
    return m_unfolded <= PropertyList::largestSize;
}

bool BinaryWalk::visit(std::uint64_t value, int depth) {
    if (value >= m_valueCount || depth > deepestBinary || ++m_visited > mostBinaryValues) {
        return false;
    }
    auto offset = numberAt(m_table + value * m_offsetSize, m_offsetSize);
    if (offset < headerSize || offset >= m_table) {
        return false;
    }
    const auto marker = numberAt(offset++, 1);
    auto length = marker & 0xF;
    // Numbers, dates and references are small and hold nothing; whether they are whole is the library's question.
    constexpr unsigned data = 4;
    constexpr unsigned ascii = 5;
    constexpr unsigned utf16 = 6;
    constexpr unsigned array = 10;
    constexpr unsigned dictionary = 13;
    const auto kind = marker >> 4;
    const bool isContainer = kind >= array && kind <= dictionary;
    if (!isContainer && kind != data && kind != ascii && kind != utf16) {
        return true;
    }
    const bool hasLength = takeLength(offset, length);
    if (!hasLength || length > m_table - offset) {
        return false;
    }
    return isContainer ? visitReferences(offset, kind == dictionary ? length * 2 : length, depth)
                       : spend(kind == utf16 ? length * 2 : length);
}

bool BinaryWalk::visitReferences(std::uint64_t first, std::uint64_t count, int depth) {
    if (count > (m_table - first) / m_referenceSize) {
        return false;
    }
    for (std::uint64_t i = 0; i < count; ++i) {
        if (!visit(numberAt(first + i * m_referenceSize, m_referenceSize), depth + 1)) {
            return false;
        }
    }
    return true;
}

} // namespace

Result<void> checkXmlPropertyList(std::span<const std::byte> bytes) {
    if (bytes.size() > PropertyList::largestSize) {
        return tooLarge();
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (countOf(text, "<array") + countOf(text, "<dict") > mostXmlContainers) {
        return tooLarge();
    }
    const auto last = text.find_last_not_of(" \t\r\n");
    if (!text.substr(0, last == std::string_view::npos ? 0 : last + 1).ends_with("</plist>")) {
        return Error{"the property list has no end"};
    }
    return {};
}

Result<void> checkBinaryPropertyList(std::span<const std::byte> bytes) {
    if (bytes.size() > PropertyList::largestSize) {
        return tooLarge();
    }
    if (!BinaryWalk(bytes).isHarmless()) {
        return Error{"that is not a sound binary property list"};
    }
    return {};
}

} // namespace starbloom
