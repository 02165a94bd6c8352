// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/SharedFolder.h"

#include "persistence/files/KeptList.h"
#include "persistence/files/PropertyList.h"

#include <cstdint>

namespace starbloom {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

/// How many bytes follow the first byte of a character, the smallest character that needs them, and its own bits.
struct Lead {
    std::size_t following;
    std::uint32_t smallest;
    std::uint32_t bits;
};

std::optional<Lead> lead(unsigned char byte) {
    if (byte < 0x80) {
        return Lead{0, 0, byte};
    }
    if (byte >= 0xC0 && byte < 0xE0) {
        return Lead{1, 0x80, byte & 0x1FU};
    }
    if (byte >= 0xE0 && byte < 0xF0) {
        return Lead{2, 0x800, byte & 0x0FU};
    }
    if (byte >= 0xF0 && byte < 0xF8) {
        return Lead{3, 0x10000, byte & 0x07U};
    }
    return std::nullopt;
}

bool isShowable(std::uint32_t character) {
    const bool isControl = character < 0x20 || character == 0x7F;
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    return !isControl && !isSurrogate && character != 0xFFFE && character != 0xFFFF && character <= 0x10FFFF;
}

/// How many bytes the character at the start of the text has; 0 when there is none that a text may hold.
std::size_t characterLength(std::string_view text) {
    const auto first = lead(static_cast<unsigned char>(text.front()));
    if (!first || text.size() <= first->following) {
        return 0;
    }
    std::uint32_t character = first->bits;
    for (std::size_t i = 1; i <= first->following; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0U) != 0x80U) {
            return 0;
        }
        character = character << 6 | (byte & 0x3FU);
    }
    return character >= first->smallest && isShowable(character) ? first->following + 1 : 0;
}

bool isAnything(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

bool isFolder(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

} // namespace

std::string SharedFolder::text() const {
    return folder ? pathText(*folder) : std::string(unknownFolderText);
}

std::string pathText(const std::filesystem::path& path) {
    std::string text;
    for (std::string_view rest = path.native(); !rest.empty();) {
        const auto length = characterLength(rest);
        text += length > 0 ? rest.substr(0, length) : replacement;
        rest.remove_prefix(length > 0 ? length : 1);
    }
    return text;
}

std::vector<std::byte> convertPathToBookmark(const std::filesystem::path& folder) {
    const auto bytes = std::as_bytes(std::span(folder.native()));
    return {bytes.begin(), bytes.end()};
}

std::optional<std::filesystem::path> convertBookmarkToPath(std::span<const std::byte> bookmark) {
    const std::string path(reinterpret_cast<const char*>(bookmark.data()), bookmark.size());
    if (path.empty() || path.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return std::filesystem::path(path);
}

Result<std::vector<std::byte>> encodeSharedFolder(const std::filesystem::path& folder) {
    auto record = PropertyList::dictionary();
    record.set("path", PropertyList::text(pathText(folder)));
    record.set("bookmark", PropertyList::data(convertPathToBookmark(folder)));
    auto list = PropertyList::array();
    list.append(std::move(record));
    return list.toXml();
}

Result<std::filesystem::path> decodeSharedFolder(std::span<const std::byte> bytes) {
    const auto list = PropertyList::fromXml(bytes);
    if (!list) {
        return list.error();
    }
    const auto record = list.value().root().element(0);
    const auto path = record.entry("path").text();
    if (!path) {
        return Error{"the property list names no folder"};
    }
    const auto bookmark = record.entry("bookmark").data();
    const auto exact = bookmark ? convertBookmarkToPath(*bookmark) : std::nullopt;
    return exact && pathText(*exact) == *path ? *exact : std::filesystem::path(*path);
}

SharedFolder saveSharedFolder(const std::filesystem::path& file, const std::filesystem::path& folder) {
    if (const auto result = saveKept(file, encodeSharedFolder(folder), decodeSharedFolder); !result) {
        log(LogLevel::Warning, "persistence", result.error().message);
    }
    return loadSharedFolder(file);
}

SharedFolder loadSharedFolder(const std::filesystem::path& file) {
    const auto folder = loadKept<std::filesystem::path>(file, decodeSharedFolder);
    return folder && isAnything(*folder) ? SharedFolder{*folder} : SharedFolder{};
}

std::optional<std::filesystem::path> startFolder(const std::filesystem::path& pathControlText,
                                                 const std::filesystem::path& exportFolder,
                                                 const std::filesystem::path& documents) {
    for (const auto& folder : {pathControlText, exportFolder, documents}) {
        if (isFolder(folder)) {
            return folder;
        }
    }
    return std::nullopt;
}

} // namespace starbloom
