// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/HelpCommands.h"

#include "shell/ModalPlace.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace starbloom {

QUrl supportPage() {
    return QUrl(QStringLiteral("https://" STARBLOOM_SUPPORT_HOST "/?p=5411"));
}

QUrl userguidePage() {
    return QUrl(QStringLiteral("https://" STARBLOOM_GUIDE_HOST "/mac/starbloom/starbloom.php"));
}

HelpCommands::HelpCommands(QWidget& window, MenuSnapshot& menus, FileManager& desktop)
    : m_window(window)
    , m_menus(menus)
    , m_desktop(desktop) {}

void HelpCommands::supportHelp() {
    ask(QStringLiteral("supportAlert"), qtTrId("accessHelpSupport"), &HelpCommands::endOfAlert100);
}

void HelpCommands::userguideHelp() {
    ask(QStringLiteral("userguideAlert"), qtTrId("accessHelpuserguide"), &HelpCommands::endOfAlert101);
}

void HelpCommands::ask(const QString& name, const QString& question, void (HelpCommands::*ended)(int code)) {
    m_menus.saveMenuStatus();
    auto* box = new QMessageBox(QMessageBox::Warning, QCoreApplication::applicationName(), question,
                                QMessageBox::NoButton, &m_window);
    box->setObjectName(name);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* yes = box->addButton(qtTrId("accessYes"), QMessageBox::AcceptRole);
    QPushButton* cancel = box->addButton(qtTrId("accessCancel"), QMessageBox::RejectRole);
    box->setDefaultButton(yes);
    box->setEscapeButton(cancel); // The close box's, too.
    connect(box, &QMessageBox::finished, this,
            [this, box, yes, ended] { (this->*ended)(box->clickedButton() == yes ? firstButton : secondButton); });
    openModal(*box);
}

void HelpCommands::endOfAlert10(int code) {
    end(code, {});
}

void HelpCommands::endOfAlert100(int code) {
    end(code, supportPage());
}

void HelpCommands::endOfAlert101(int code) {
    end(code, userguidePage());
}

void HelpCommands::end(int code, const QUrl& page) {
    if (code != firstButton && code != secondButton) {
        return;
    }
    if (code == firstButton && !page.isEmpty()) {
        m_desktop.open(page);
    }
    m_menus.loadMenuStatus();
}

} // namespace starbloom
