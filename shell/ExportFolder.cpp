// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ExportFolder.h"

#include "views/PathControl.h"

#include <utility>

namespace starbloom {

namespace {

/// Where the preferences' folder for exports lies in their mirror.
constexpr std::size_t destinationFolder = 1;

} // namespace

ExportFolder::ExportFolder(PathControl& control, FilePanel& panel, MenuSnapshot& menus, const Stores& stores,
                           const DocumentsFolder& documents, std::filesystem::path file)
    : m_control(control)
    , m_stores(stores)
    , m_documents(documents)
    , m_file(std::move(file))
    , m_choice(panel, menus, m_file, [this](const SharedFolder& folder) { show(folder); }) {
    connect(&m_control, &PathControl::clicked, this, &ExportFolder::selectedSharedFolder);
}

void ExportFolder::loadSharedFolder() {
    show(starbloom::loadSharedFolder(m_file));
}

void ExportFolder::selectedSharedFolder() {
    const auto start = startFolder(m_shown.folder.value_or(std::filesystem::path()),
                                   m_stores.preferenceValue(destinationFolder), m_documents.documentsFolder());
    m_choice.selectedSharedFolder(qtTrId("exportSelectExportfolderMessage").toStdString(),
                                  qtTrId("exportSelectExportfolderTitle").toStdString(), start);
}

bool ExportFolder::isKnown() const {
    return fileExists(m_file) && starbloom::loadSharedFolder(m_file).folder.has_value();
}

void ExportFolder::show(const SharedFolder& folder) {
    m_shown = folder;
    m_control.setStringValue(QString::fromStdString(folder.text()));
    emit changed();
}

} // namespace starbloom
