// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/MenuSnapshot.h"
#include "shell/Commands.h"

#include <QObject>

#include <functional>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;
class QWidget;

namespace starbloom {

/// The menus of the main window, built from the tables of commands and menus. What an item does is connected to its
/// action.
///
/// The actions belong to the window as well, so that their keys also work while the menu bar is hidden. Lives on the
/// GUI thread, as long as the window.
class Menus final : public QObject, public MenuItems {
    Q_OBJECT

public:
    Menus(QMenuBar& bar, QWidget& window);

    /// Gives menus and items their titles.
    void makeNSMenu();

    /// Of a submenu's command: what opens it.
    QAction& action(Command command) const { return *m_actions[static_cast<std::size_t>(command)]; }

    /// Decides from now on whether the preferences are open, which some items rest for.
    void validateBy(std::function<bool()> isPreferencesOpen) { m_isPreferencesOpen = std::move(isPreferencesOpen); }

    // For the snapshot.
    bool isEnabled(MenuItem item) const override;
    void setEnabled(MenuItem item, bool enabled) override;

signals:
    /// A menu of the bar is about to be seen: the last moment to enable and disable its items.
    void showing();

    /// The menu is gone; a choice made in it has yet to take effect.
    void hidden();

private:
    void addMenu(const MenuRow& row, QMenuBar& bar);
    void addAction(const CommandRow& row, QWidget& window);
    void fill(QMenu& menu, const MenuRow& row);
    void validate();
    QAction& actionOf(MenuItem item) const;

    std::vector<QMenu*> m_menus;     ///< In the order of their table.
    std::vector<QAction*> m_actions; ///< In the order of Command.
    std::vector<QAction*> m_resting; ///< Enabled, but for the preferences.
    std::function<bool()> m_isPreferencesOpen = [] { return false; };
};

} // namespace starbloom
