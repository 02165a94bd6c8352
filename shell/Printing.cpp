// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Printing.h"

#include "shell/ModalPlace.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPointer>

namespace starbloom {

Printing::Printing(QWidget& window, MenuSnapshot& menus, PrintSystem& system)
    : m_window(window)
    , m_menus(menus)
    , m_system(system) {}

void Printing::printPlain() {
    run(&PrintSystem::printPlain);
}

void Printing::setUpPage() {
    run(&PrintSystem::setUpPage);
}

void Printing::run(bool (PrintSystem::*task)(QWidget& window, PrintSystem::Finished finished)) {
    m_menus.saveMenuStatus();
    bringBack(m_window); // Desktops differ in whether what belongs to a minimized window can be seen.
    const auto finished = [self = QPointer(this)] {
        if (self != nullptr) {
            self->m_menus.loadMenuStatus();
        }
    };
    if (!(m_system.*task)(m_window, finished)) {
        tellImpossible();
    }
}

void Printing::tellImpossible() {
    const QString name = QCoreApplication::applicationName();
    auto* box = new QMessageBox(QMessageBox::Warning, name, qtTrId("printErrorNSPrintOperation").arg(name),
                                QMessageBox::NoButton, &m_window);
    box->setObjectName(QStringLiteral("printAlert"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->addButton(QStringLiteral("OK"), QMessageBox::AcceptRole); // The same in all languages.
    connect(box, &QMessageBox::finished, this, [this] { m_menus.loadMenuStatus(); });
    openModal(*box);
}

} // namespace starbloom
