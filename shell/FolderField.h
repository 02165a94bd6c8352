// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/FilePanel.h"
#include "persistence/stores/Stores.h"

#include <QFileIconProvider>
#include <QObject>
#include <QPointer>

#include <filesystem>
#include <string>

class QComboBox;
class QLineEdit;

namespace starbloom {

/// One folder of the preferences: its whole path in a text field that cannot be edited, and a pop-up of two items, the
/// folder and "Other…", which asks for another one.
///
/// The widgets are the window's. They, the documents folder and the panel must outlive it; an answer of the panel that
/// comes later is dropped. Lives on the GUI thread.
class FolderField final : public QObject {
    Q_OBJECT

public:
    /// The keys of the panel's title and message.
    struct PanelTexts {
        const char* title;
        const char* message;
    };

    FolderField(QLineEdit& field, QComboBox& popup, const DocumentsFolder& documents, FilePanel& panel,
                PanelTexts texts);

    /// Shows a folder that was read from the store.
    void showStored(const std::filesystem::path& folder);

    /// Shows the user's documents folder.
    void useDocuments();

    /// Acts on the pop-up's present item: the second one opens the panel. Cancelling selects the folder's item again.
    void popupSelected();

    /// The folder as the file system spells it, which need not be UTF-8; the text field can only show it.
    const std::filesystem::path& folder() const { return m_folder; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show(const std::filesystem::path& folder, const QString& other);
    void answered(const std::optional<std::filesystem::path>& choice);

    QLineEdit& m_field;
    QComboBox& m_popup;
    const DocumentsFolder& m_documents;
    FilePanel& m_panel;
    PanelTexts m_texts;
    QFileIconProvider m_icons;
    std::filesystem::path m_folder;
};

} // namespace starbloom
