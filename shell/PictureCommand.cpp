// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/PictureCommand.h"

#include "base/Log.h"
#include "shell/ModalPlace.h"

#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace starbloom {

PictureCommand::PictureCommand(Encoders& encoders, QWidget& window, FilePanel& panel)
    : m_encoders(encoders)
    , m_window(window)
    , m_panel(panel) {
    m_worker.setMaxThreadCount(1); // Numbers follow the order of the clicks.
}

PictureCommand::~PictureCommand() {
    m_worker.waitForDone();
}

void PictureCommand::savePicture(PictureRequest request) {
    auto shared = std::make_shared<PictureRequest>(std::move(request));
    m_worker.start([this, shared] {
        auto result = m_encoders.exportPicture(*shared);
        if (!result) {
            log(LogLevel::Warning, "export", result.error().message); // The window may be gone before it can tell.
        }
        QMetaObject::invokeMethod(
            this, [this, shared, result] { finished(shared, result); }, Qt::QueuedConnection);
    });
}

void PictureCommand::finished(const Shared& request, const Result<std::filesystem::path>& result) {
    if (result) {
        emit saved(result.value());
    } else {
        offerAnotherFolder(request, QString::fromStdString(result.error().message));
    }
}

void PictureCommand::offerAnotherFolder(const Shared& request, const QString& why) {
    auto* box = new QMessageBox(QMessageBox::Warning, qtTrId("pictureFailureTitle"), qtTrId("pictureFailureText"),
                                QMessageBox::NoButton, &m_window);
    box->setObjectName(QStringLiteral("pictureFailure"));
    box->setInformativeText(why);
    box->setAttribute(Qt::WA_DeleteOnClose);
    auto* another = box->addButton(qtTrId("pictureAnotherFolder"), QMessageBox::AcceptRole);
    box->addButton(qtTrId("pictureDiscard"), QMessageBox::RejectRole);
    connect(box, &QMessageBox::buttonClicked, this, [this, another, request, why](QAbstractButton* clicked) {
        if (clicked == another) {
            // When the box has gone: a panel must not belong to it.
            QMetaObject::invokeMethod(
                this, [this, request, why] { askForFolder(request, why); }, Qt::QueuedConnection);
        } else {
            emit failed(why);
        }
    });
    openModalUnasked(*box);
}

void PictureCommand::askForFolder(const Shared& request, const QString& why) {
    m_panel.ask({.kind = FilePanelRequest::Kind::Folder,
                 .message = qtTrId("exportSelectExportfolderMessage").toStdString(),
                 .title = qtTrId("exportSelectExportfolderTitle").toStdString(),
                 .startFolder = request->folder,
                 .canCreateFolders = true},
                [this, request, why](const std::optional<std::filesystem::path>& choice) {
                    if (choice) {
                        request->folder = *choice;
                        savePicture(std::move(*request));
                    } else {
                        offerAnotherFolder(request, why); // Cancelling one question does not answer the other.
                    }
                });
}

} // namespace starbloom
