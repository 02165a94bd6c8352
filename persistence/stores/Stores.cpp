// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/Stores.h"

#include "base/Log.h"
#include "persistence/stores/StoreTables.h"

#include <utility>

namespace starbloom {

namespace {

constexpr std::size_t openFolderPosition = 0;
constexpr std::size_t destinationFolderPosition = 1;

} // namespace

bool Stores::MirroredStore::append() {
    auto values = store.readAll();
    if (values) {
        mirror.insert(mirror.end(), values->begin(), values->end());
    }
    return values.has_value();
}

void Stores::MirroredStore::edit(std::size_t position, const std::string& value) {
    const auto& rows = store.definition().rows;
    if (position >= mirror.size() && position < rows.size()) {
        for (std::size_t i = mirror.size(); i < rows.size(); ++i) {
            mirror.push_back(rows[i].value);
        }
    }
    if (position >= mirror.size()) {
        log(LogLevel::Warning, "persistence",
            "the " + store.definition().table + " mirror has no position " + std::to_string(position));
        return;
    }
    mirror[position] = value;
}

std::string Stores::MirroredStore::value(std::size_t position) const {
    const auto& rows = store.definition().rows;
    if (position < mirror.size()) {
        return mirror[position];
    }
    return position < rows.size() ? rows[position].value : std::string();
}

Stores::Stores(const AppFolder& folder)
    : m_windows{KeyValueStore(folder.filePath0(), windowsDefinition()), {}}
    , m_preferences{KeyValueStore(folder.filePath1(), preferencesDefinition()), {}}
    , m_checkboxes{KeyValueStore(folder.filePath2(), generalDefinition()), {}} {}

void Stores::prepare() {
    for (MirroredStore* each : {&m_windows, &m_preferences, &m_checkboxes}) {
        each->store.prepare();
    }
}

void Stores::openCreateDB0() {
    m_windows.store.openCreate();
}

void Stores::openCreateDB1() {
    m_preferences.store.openCreate();
}

void Stores::openCreateDB2() {
    m_checkboxes.store.openCreate();
}

bool Stores::populateDB0() {
    return m_windows.append();
}

PreferenceFolders Stores::populateDB1(const DocumentsFolder& documents) {
    m_preferences.append();
    auto open = settleFolder(openFolderPosition, documents);
    auto destination = settleFolder(destinationFolderPosition, documents);
    return {std::move(open), std::move(destination)};
}

void Stores::populateDB2() {
    m_checkboxes.append();
}

void Stores::reloadOnlyDB1() {
    if (auto values = m_preferences.store.readAll()) {
        m_preferences.mirror = std::move(*values);
    }
}

void Stores::reloadDB2() {
    m_checkboxes.mirror.clear();
    populateDB2();
}

void Stores::setMain() {
    m_preferences.append();
}

void Stores::clearPreferences() {
    m_preferences.mirror.clear();
    m_checkboxes.mirror.clear();
}

void Stores::saveData0(const std::string& value, const std::string& key) const {
    m_windows.store.save(value, key);
}

void Stores::saveData1(const std::string& value, const std::string& key) const {
    m_preferences.store.save(value, key);
}

void Stores::saveData2(const std::string& value, const std::string& key) const {
    m_checkboxes.store.save(value, key);
}

void Stores::editData1(std::size_t position, const std::string& value) {
    m_preferences.edit(position, value);
}

void Stores::editData2(std::size_t position, const std::string& value) {
    m_checkboxes.edit(position, value);
}

std::string Stores::windowValue(std::size_t position) const {
    return m_windows.value(position);
}

std::string Stores::preferenceValue(std::size_t position) const {
    return m_preferences.value(position);
}

std::string Stores::checkboxValue(std::size_t position) const {
    return m_checkboxes.value(position);
}

std::filesystem::path Stores::settleFolder(std::size_t position, const DocumentsFolder& documents) {
    const std::string value = preferenceValue(position);
    std::filesystem::path folder = value;
    if (value == "0" || !fileExists(folder)) {
        folder = documents.documentsFolder();
    }
    editData1(position, folder.string());
    return folder;
}

} // namespace starbloom
