// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/FolderField.h"

#include "persistence/stores/AppFolder.h"
#include "views/ControlLook.h"

#include <QComboBox>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>

namespace starbloom {

namespace {

enum Item { FolderItem, OtherItem };

/// Points, both ways.
constexpr int iconSize = 16;

QString shown(const std::filesystem::path& path) {
    return QFile::decodeName(path.c_str());
}

bool movesSelection(int key) {
    return key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown ||
           key == Qt::Key_Home || key == Qt::Key_End;
}

} // namespace

FolderField::FolderField(QLineEdit& field, QComboBox& popup, const DocumentsFolder& documents, FilePanel& panel,
                         PanelTexts texts)
    : m_field(field)
    , m_popup(popup)
    , m_documents(documents)
    , m_panel(panel)
    , m_texts(texts) {
    m_popup.setIconSize({iconSize, iconSize});
    m_popup.installEventFilter(this);
}

void FolderField::showStored(const std::filesystem::path& folder) {
    show(folder, qtTrId("controlPreferencesOpenOther"));
}

void FolderField::useDocuments() {
    show(m_documents.documentsFolder(), qtTrId("controlpreferencesOther"));
}

void FolderField::show(const std::filesystem::path& folder, const QString& other) {
    m_folder = folder;
    const QString path = shown(folder);
    m_field.setText(path);
    m_field.setCursorPosition(0);
    m_field.setToolTip(plainToolTip(path));
    m_popup.clear();
    const QIcon icon = m_icons.icon(QFileInfo(path));
    m_popup.addItem(icon.isNull() ? m_icons.icon(QFileIconProvider::Folder) : icon, shown(getlastpath(folder)));
    m_popup.addItem(other);
    m_popup.setCurrentIndex(FolderItem);
}

void FolderField::popupSelected() {
    if (m_popup.currentIndex() != OtherItem) {
        return;
    }
    m_panel.ask({.kind = FilePanelRequest::Kind::Folder,
                 .message = qtTrId(m_texts.message).toStdString(),
                 .title = qtTrId(m_texts.title).toStdString(),
                 .startFolder = fileExists(m_folder) ? m_folder : m_documents.documentsFolder(),
                 .canCreateFolders = true},
                [self = QPointer(this)](const std::optional<std::filesystem::path>& choice) {
                    if (self) {
                        self->answered(choice);
                    }
                });
}

void FolderField::answered(const std::optional<std::filesystem::path>& choice) {
    if (choice) {
        show(*choice, qtTrId("controlpreferencesOther"));
    } else {
        m_popup.setCurrentIndex(FolderItem);
    }
}

bool FolderField::eventFilter(QObject* watched, QEvent* event) {
    // A closed pop-up would go to "Other…" at once, and a panel would open under a finger on the wheel or the arrows.
    if (event->type() == QEvent::Wheel) {
        event->ignore();
        return true;
    }
    if (event->type() == QEvent::KeyPress && movesSelection(static_cast<QKeyEvent*>(event)->key())) {
        m_popup.showPopup();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace starbloom
