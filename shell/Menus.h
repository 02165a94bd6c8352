// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/MenuSnapshot.h"
#include "shell/Commands.h"

#include <QObject>

#include <vector>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace starbloom {

/// The menus of the main window, built from the table of commands. What an item does is connected to its action.
///
/// The actions belong to the window as well, so that their keys also work while the menu bar is hidden. Lives on the
/// GUI thread, as long as the window.
class Menus final : public QObject, public MenuItems {
    Q_OBJECT

public:
    Menus(QMenuBar& bar, QWidget& window);

    /// Gives menus and items their titles.
    void makeNSMenu();

    QAction& action(Command command) const { return *m_actions[static_cast<std::size_t>(command)]; }

    // For the snapshot. An item without a command is disabled and stays so.
    bool isEnabled(MenuItem item) const override;
    void setEnabled(MenuItem item, bool enabled) override;

private:
    QAction* actionOf(MenuItem item) const;

    std::vector<QMenu*> m_menus;
    std::vector<QAction*> m_actions; ///< In the order of Command.
};

} // namespace starbloom
