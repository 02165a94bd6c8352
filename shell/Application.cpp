// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Application.h"

#include "base/Log.h"
#include "persistence/stores/KeyValueStore.h"
#include "shell/ModalPlace.h"

#include <QMessageBox>

namespace starbloom {

namespace {

/// Long enough not to answer each move of a slider, short enough not to leave a later failure untold.
constexpr std::chrono::minutes tellingPause{1};

} // namespace

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const StoreFailure& failure) {
        tell(failure);
        return true;
    }
}

void Application::tell(const std::runtime_error& failure) {
    log(LogLevel::Warning, "persistence", failure.what());
    if (!m_tellAgain.hasExpired()) {
        return;
    }
    m_tellAgain.setRemainingTime(tellingPause);
    auto* box = new QMessageBox(QMessageBox::Warning, qtTrId("storeFailureTitle"), qtTrId("storeFailureText"),
                                QMessageBox::Ok, activeWindow());
    box->setObjectName(QStringLiteral("storeFailure"));
    box->setInformativeText(QString::fromUtf8(failure.what()));
    box->setAttribute(Qt::WA_DeleteOnClose);
    openModalUnasked(*box);
}

} // namespace starbloom
