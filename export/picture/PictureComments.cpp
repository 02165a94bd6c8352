// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/PictureComments.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

namespace starbloom {

namespace {

constexpr std::size_t mostComments = 16;
constexpr std::size_t longestComment = 4096;

/// Bytes that answer any question: beyond their end is nothing, and numbers there are 0.
class Bytes {
public:
    explicit Bytes(std::span<const std::byte> bytes)
        : m_bytes(bytes) {}

    std::size_t size() const { return m_bytes.size(); }

    std::size_t byte(std::size_t at) const { return at < size() ? std::to_integer<std::size_t>(m_bytes[at]) : 0; }

    std::size_t big(std::size_t at, std::size_t length) const {
        std::size_t value = 0;
        for (std::size_t i = 0; i < length; ++i) {
            value = value << 8U | byte(at + i);
        }
        return value;
    }

    std::size_t little(std::size_t at, std::size_t length) const {
        std::size_t value = 0;
        for (std::size_t i = length; i-- > 0;) {
            value = value << 8U | byte(at + i);
        }
        return value;
    }

    /// A part, shorter where the bytes end.
    Bytes part(std::size_t at, std::size_t length) const {
        const std::size_t begin = std::min(at, size());
        return Bytes(m_bytes.subspan(begin, std::min(length, size() - begin)));
    }

    std::string_view text() const { return {reinterpret_cast<const char*>(m_bytes.data()), size()}; }

    bool startsWith(std::string_view text) const { return this->text().starts_with(text); }

private:
    std::span<const std::byte> m_bytes;
};

class Comments {
public:
    void add(std::string_view text) {
        if (m_texts.size() < mostComments && text.size() <= longestComment) {
            m_texts.emplace_back(text.substr(0, text.find('\0')));
        }
    }

    std::vector<std::string> take() { return std::move(m_texts); }

private:
    std::vector<std::string> m_texts;
};

void walkPng(const Bytes& file, Comments& comments) {
    for (std::size_t at = 8; at + 12 <= file.size();) {
        const std::size_t length = file.big(at, 4);
        if (file.part(at + 4, 4).text() == "tEXt") {
            const auto text = file.part(at + 8, length).text();
            comments.add(text.substr(std::min(text.find('\0'), text.size() - 1) + 1)); // Behind the keyword.
        }
        at += 12 + length;
    }
}

/// Segments of a marker and a length that counts itself, as JPEG and the codestream of JPEG 2000 have them.
void walkSegments(const Bytes& file, std::size_t comment, std::size_t last, std::size_t skip, Comments& comments) {
    for (std::size_t at = 2; at + 4 <= file.size() && file.byte(at) == 0xFF && file.byte(at + 1) != last;) {
        const std::size_t length = file.big(at + 2, 2);
        if (length < 2) {
            return;
        }
        if (file.byte(at + 1) == comment && length >= 2 + skip) {
            comments.add(file.part(at + 4 + skip, length - 2 - skip).text());
        }
        at += 2 + length;
    }
}

void walkJpeg2000(const Bytes& file, Comments& comments) {
    for (std::size_t at = 0; at + 8 <= file.size();) {
        std::size_t length = file.big(at, 4);
        std::size_t header = 8;
        if (length == 1) { // The length follows in eight bytes.
            length = file.big(at + 8, 8);
            header = 16;
        }
        if (file.part(at + 4, 4).text() == "jp2c") {
            walkSegments(file.part(at + header, file.size()), 0x64, 0x90, 2, comments);
            return;
        }
        if (length < header || length > file.size() - at) { // 0 would mean: to the end of the file.
            return;
        }
        at += length;
    }
}

/// Joins the pieces of up to 255 bytes and yields where they end.
std::size_t joinPieces(const Bytes& file, std::size_t at, std::string& text) {
    while (file.byte(at) != 0) {
        if (text.size() <= longestComment) {
            text += file.part(at + 1, file.byte(at)).text();
        }
        at += 1 + file.byte(at);
    }
    return at + 1;
}

void walkGif(const Bytes& file, Comments& comments) {
    const std::size_t flags = file.byte(10);
    std::size_t at = 13 + ((flags & 0x80U) != 0 ? std::size_t{6} << (flags & 7U) : 0);
    while (file.byte(at) == 0x21) {
        std::string text;
        const bool isComment = file.byte(at + 1) == 0xFE;
        at = joinPieces(file, at + 2, text);
        if (isComment) {
            comments.add(text);
        }
    }
}

void walkTiff(const Bytes& file, Comments& comments) {
    const bool isBig = file.startsWith("MM");
    const auto number = [&](std::size_t at, std::size_t length) {
        return isBig ? file.big(at, length) : file.little(at, length);
    };
    const std::size_t directory = number(4, 4);
    for (std::size_t i = 0; i < number(directory, 2); ++i) {
        const std::size_t entry = directory + 2 + 12 * i;
        constexpr std::size_t imageDescription = 270;
        if (number(entry, 2) == imageDescription && number(entry + 2, 2) == 2) {
            const std::size_t length = number(entry + 4, 4);
            comments.add(file.part(length > 4 ? number(entry + 8, 4) : entry + 8, length).text());
        }
    }
}

} // namespace

std::vector<std::string> pictureComments(std::span<const std::byte> bytes) {
    using namespace std::string_view_literals;
    const Bytes file(bytes);
    Comments comments;
    if (file.startsWith("\x89PNG\r\n\x1A\n")) {
        walkPng(file, comments);
    } else if (file.startsWith("\xFF\xD8\xFF")) {
        walkSegments(file, 0xFE, 0xDA, 0, comments);
    } else if (file.startsWith("GIF8")) {
        walkGif(file, comments);
    } else if (file.startsWith("II*\0"sv) || file.startsWith("MM\0*"sv)) {
        walkTiff(file, comments);
    } else if (file.startsWith("\0\0\0\x0CjP  \r\n\x87\n"sv)) {
        walkJpeg2000(file, comments);
    } else if (file.startsWith("\xFF\x4F\xFF\x51")) {
        walkSegments(file, 0x64, 0x90, 2, comments);
    }
    return comments.take();
}

} // namespace starbloom
