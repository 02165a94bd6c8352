// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/ExportSettings.h"

#include "persistence/files/KeptList.h"
#include "persistence/files/PropertyList.h"
#include "persistence/files/SharedFolder.h"

#include <charconv>

namespace starbloom {

namespace {

constexpr int formatCount = 6;
constexpr int compressionCount = 20;
constexpr int nameCopies = 4;

std::optional<int> indexIn(const std::optional<std::string>& text, int count) {
    int index = 0;
    if (!text) {
        return std::nullopt;
    }
    const char* end = text->data() + text->size();
    const auto [rest, failure] = std::from_chars(text->data(), end, index);
    const bool isNumber = failure == std::errc() && rest == end;
    return isNumber && index >= 0 && index < count ? std::optional(index) : std::nullopt;
}

} // namespace

Result<std::vector<std::byte>> encodeExportSettings(const ExportSettings& settings) {
    auto list = PropertyList::array();
    list.append(PropertyList::text(std::to_string(settings.format)));
    list.append(PropertyList::text(std::to_string(settings.compression)));
    for (int copy = 0; copy < nameCopies; ++copy) {
        list.append(PropertyList::text(pathText(settings.name)));
    }
    return list.toXml();
}

Result<ExportSettings> decodeExportSettings(std::span<const std::byte> bytes) {
    const auto list = PropertyList::fromXml(bytes);
    if (!list) {
        return list.error();
    }
    const auto entry = [&](std::size_t index) { return list.value().root().element(index).text(); };
    const auto format = indexIn(entry(0), formatCount);
    const auto compression = indexIn(entry(1), compressionCount);
    const auto name = entry(2);
    if (!format || !compression || !name) {
        return Error{"the property list holds no export settings"};
    }
    return ExportSettings{*format, *compression, *name};
}

Result<void> saveExportSettings(const std::filesystem::path& file, const ExportSettings& settings) {
    return saveKept(file, encodeExportSettings(settings), decodeExportSettings);
}

std::optional<ExportSettings> loadExportSettings(const std::filesystem::path& file) {
    return loadKept<ExportSettings>(file, decodeExportSettings);
}

} // namespace starbloom
