// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/DesktopFilePanel.h"

#include "shell/ModalPlace.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMainWindow>
#include <QMessageBox>

#include <utility>

namespace starbloom {

namespace {

/// The panel shows its window's title and no text of its own, so the message has to go there.
QString windowTitleOf(const FilePanelRequest& request) {
    QStringList parts{QString::fromStdString(request.title), QString::fromStdString(request.message)};
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" – "));
}

/// Such as "Pictures (*.bmp *.jpg)". Patterns hold for capitals, too.
QString filterOf(const FilePanelRequest& request) {
    QStringList patterns;
    for (const std::string& type : request.types) {
        patterns.append(QStringLiteral("*.") + QString::fromStdString(type));
    }
    return QStringLiteral("%1 (%2)").arg(QString::fromStdString(request.typesName), patterns.join(u' '));
}

/// Sees to it that a new file has its extension before it is asked whether a file of that name may be replaced: the
/// dialog itself adds one only to names without any dot.
class SuffixedDialog : public QFileDialog {
public:
    SuffixedDialog(QWidget* parent, const FilePanelRequest& request)
        : QFileDialog(parent, windowTitleOf(request))
        , m_ending(request.extension.empty() ? QString() : u'.' + QString::fromStdString(request.extension)) {}

    void accept() override {
        const QStringList chosen = selectedFiles();
        if (!m_ending.isEmpty() && !chosen.isEmpty() && !chosen.last().endsWith(m_ending, Qt::CaseInsensitive) &&
            !QFileInfo(chosen.last()).isDir()) {
            // selectFile() does not write into the field while the user is in it.
            if (auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))) {
                field->setText(field->text() + m_ending);
            }
        }
        QFileDialog::accept();
    }

private:
    QString m_ending;
};

QFileDialog* makeDialog(const FilePanelRequest& request, QWidget* parent) {
    auto* dialog = new SuffixedDialog(parent, request);
    dialog->setObjectName(QStringLiteral("filePanel"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    const bool folder = request.kind == FilePanelRequest::Kind::Folder;
    const bool toWrite = request.kind == FilePanelRequest::Kind::NewFile;
    dialog->setFileMode(folder ? QFileDialog::Directory : toWrite ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog->setAcceptMode(toWrite ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog->setOption(QFileDialog::ShowDirsOnly, folder);
    dialog->setOption(QFileDialog::ReadOnly, !request.canCreateFolders);
    if (request.startFolder) {
        const QString start = QFile::decodeName(request.startFolder->c_str());
        // A folder that is gone would stand for the one that the program was started in.
        dialog->setDirectory(QFileInfo(start).isDir() ? start : QDir::homePath());
    }
    if (!request.types.empty()) {
        dialog->setNameFilter(filterOf(request));
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
    // What was begun with the panel goes on when it closes, and nothing else meanwhile.
    openModal(*dialog);
}

QWidget* DesktopFilePanel::usualParent() {
    QWidget* modal = QApplication::activeModalWidget();
    // A message box that has led to the panel is about to go, and would take the panel with it.
    if (modal != nullptr && qobject_cast<QMessageBox*>(modal) == nullptr) {
        return modal;
    }
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && qobject_cast<QMainWindow*>(window) != nullptr) {
            return window;
        }
    }
    return nullptr;
}

} // namespace starbloom
