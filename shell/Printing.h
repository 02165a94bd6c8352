// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/MenuSnapshot.h"
#include "shell/PrintSystem.h"

#include <QObject>

class QWidget;

namespace starbloom {

/// The commands that print. The menus rest while a panel is open, or the alert that tells that nothing can be printed.
///
/// What it refers to must outlive it. GUI thread.
class Printing final : public QObject {
    Q_OBJECT

public:
    Printing(QWidget& window, MenuSnapshot& menus, PrintSystem& system);

    /// Prints a page with nothing on it.
    void printPlain();

    /// Lets the user choose the paper.
    void setUpPage();

private:
    void run(bool (PrintSystem::*task)(QWidget& window, PrintSystem::Finished finished));
    void tellImpossible();

    QWidget& m_window;
    MenuSnapshot& m_menus;
    PrintSystem& m_system;
};

} // namespace starbloom
