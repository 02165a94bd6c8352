// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AboutBox.h"

#include "shell/ModalPlace.h"
#include "views/SymbolIcon.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace starbloom {

namespace {

constexpr int iconSize = 64;

QMessageBox* makeAboutBox(QWidget& window, const QString& objectName) {
    const QString name = QCoreApplication::applicationName();
    auto* box = new QMessageBox(QMessageBox::NoIcon, qtTrId("aboutTitle").arg(name), {}, QMessageBox::Close, &window);
    box->setObjectName(objectName);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->setIconPixmap(symbolIcon(u"starbloom").pixmap(QSize(iconSize, iconSize), window.devicePixelRatioF()));
    const QString version = qtTrId("aboutVersion").arg(QCoreApplication::applicationVersion());
    box->setText(QStringLiteral("<h3>%1</h3>%2").arg(name.toHtmlEscaped(), version.toHtmlEscaped()));
    box->setInformativeText(qtTrId("applicationDescription") + QStringLiteral("\n\n") + qtTrId("aboutLicense"));
    return box;
}

} // namespace

void showAboutBox(QWidget& window) {
    const QString objectName = QStringLiteral("aboutBox");
    auto* box = window.findChild<QMessageBox*>(objectName);
    if (box == nullptr) {
        box = makeAboutBox(window, objectName);
    }
    showAnew(*box);
    box->raise();
    box->activateWindow();
}

} // namespace starbloom
