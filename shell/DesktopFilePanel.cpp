// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/DesktopFilePanel.h"

#include <QFile>
#include <QFileDialog>

#include <utility>

namespace starbloom {

namespace {

/// The panel shows its window's title and no text of its own, so the message has to go there.
QString windowTitleOf(const FilePanelRequest& request) {
    QStringList parts{QString::fromStdString(request.title), QString::fromStdString(request.message)};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" – "));
}

QFileDialog* makeDialog(const FilePanelRequest& request, QWidget* parent) {
    auto* dialog = new QFileDialog(parent, windowTitleOf(request));
    dialog->setObjectName(QStringLiteral("filePanel"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const bool folder = request.kind == FilePanelRequest::Kind::Folder;
    const bool toWrite = request.kind == FilePanelRequest::Kind::NewFile;
    dialog->setFileMode(folder ? QFileDialog::Directory : toWrite ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog->setAcceptMode(toWrite ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setOption(QFileDialog::ShowDirsOnly, folder);
    dialog->setOption(QFileDialog::ReadOnly, !request.canCreateFolders);
    if (request.startFolder) {
        dialog->setDirectory(QFile::decodeName(request.startFolder->c_str()));
    }
    if (toWrite) {
        const QString extension = QString::fromStdString(request.extension);
        dialog->setNameFilter(QStringLiteral("*.") + extension);
        dialog->setDefaultSuffix(extension);
        dialog->selectFile(QString::fromStdString(request.suggestedName) + u'.' + extension);
    }
    return dialog;
}

std::optional<std::filesystem::path> choiceIn(const QFileDialog& dialog, int result) {
    const QStringList chosen = dialog.selectedFiles();
    if (result != QDialog::Accepted || chosen.isEmpty()) {
        return std::nullopt;
    }
    return std::filesystem::path(QFile::encodeName(chosen.last()).toStdString());
}

} // namespace

DesktopFilePanel::DesktopFilePanel(Parent parent)
    : m_parent(std::move(parent)) {}

void DesktopFilePanel::ask(const FilePanelRequest& request,
                           std::function<void(std::optional<std::filesystem::path> choice)> answer) {
    QFileDialog* dialog = makeDialog(request, m_parent());
    QObject::connect(&m_alive, &QObject::destroyed, dialog, [dialog] { delete dialog; });
    QObject::connect(dialog, &QDialog::finished, &m_alive,
                     [dialog, answer = std::move(answer)](int result) { answer(choiceIn(*dialog, result)); });
    dialog->open();
}

} // namespace starbloom
