// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MovieRescue.h"

#include "persistence/files/SharedFolder.h"
#include "shell/ModalPlace.h"

#include <QMessageBox>
#include <QPushButton>

#include <string>
#include <system_error>
#include <utility>

namespace starbloom {

namespace {

/// Whether any run has left a journal. Asked first, for it costs next to nothing, and there hardly ever is one.
bool hasJournal(const std::filesystem::path& journal) {
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(journal.parent_path(), ignored)) {
        if (entry.path().filename().string().starts_with(journal.filename().string())) {
            return true;
        }
    }
    return false;
}

} // namespace

MovieRescue::MovieRescue(Encoders& encoders, std::filesystem::path journal, QWidget& window)
    : m_encoders(encoders)
    , m_journal(std::move(journal))
    , m_window(window) {}

MovieRescue::~MovieRescue() {
    m_ending = true;
    m_worker.waitForDone();
}

void MovieRescue::offer() {
    if (!hasJournal(m_journal)) {
        return;
    }
    m_worker.start([this] {
        if (const auto movie = m_encoders.findInterruptedMovie(m_journal)) {
            QMetaObject::invokeMethod(
                this, [this, movie] { ask(*movie); }, Qt::QueuedConnection);
        }
    });
}

void MovieRescue::ask(const UnfinishedMovie& movie) {
    const auto name = QString::fromStdString(pathText(movie.target));
    auto* box = new QMessageBox(QMessageBox::Question, qtTrId("movieRescueTitle"), qtTrId("movieRescueText").arg(name),
                                QMessageBox::NoButton, &m_window);
    box->setObjectName(QStringLiteral("movieRescue"));
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    auto* yes = box->addButton(qtTrId("movieRescueYes"), QMessageBox::AcceptRole);
    auto* never = box->addButton(qtTrId("movieRescueNever"), QMessageBox::DestructiveRole);
    box->addButton(qtTrId("movieRescueLater"), QMessageBox::RejectRole);
    box->setDefaultButton(yes);
    connect(box, &QMessageBox::buttonClicked, this, [this, yes, never, movie](QAbstractButton* clicked) {
        if (clicked == yes) {
            rescue(movie);
        } else if (clicked == never) {
            if (const auto discarded = m_encoders.discardInterruptedMovie(movie)) {
                offer();
            } else {
                emit failed(QString::fromStdString(discarded.error().message));
            }
        }
    });
    openModalUnasked(*box);
}

void MovieRescue::rescue(const UnfinishedMovie& movie) {
    m_worker.start([this, movie] {
        const auto result = m_encoders.recoverMovie(movie, [this] { return !m_ending; });
        QMetaObject::invokeMethod(
            this,
            [this, result] {
                if (result) {
                    emit rescued(result.value());
                    offer(); // There may be another one.
                } else {
                    emit failed(QString::fromStdString(result.error().message));
                }
            },
            Qt::QueuedConnection);
    });
}

} // namespace starbloom
