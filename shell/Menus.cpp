// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Menus.h"

#include "views/Texts.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <utility>

namespace starbloom {

Menus::Menus(QMenuBar& bar, QWidget& window)
    : QObject(&window)
    , m_actions(commandTable().size()) {
    for (const MenuRow& each : menuTable()) {
        addMenu(each, bar);
    }
    for (const CommandRow& each : commandTable()) {
        addAction(each, window);
    }
    for (std::size_t i = 0; i < m_menus.size(); ++i) {
        fill(*m_menus[i], menuTable()[i]);
    }
}

void Menus::addMenu(const MenuRow& row, QMenuBar& bar) {
    auto* menu = new QMenu(&bar);
    menu->setObjectName(QLatin1String(row.name));
    m_menus.push_back(menu);
    if (row.opener) {
        m_actions[static_cast<std::size_t>(*row.opener)] = menu->menuAction();
        return;
    }
    bar.addMenu(menu);
    connect(menu, &QMenu::aboutToShow, this, &Menus::validate);
    connect(menu, &QMenu::aboutToShow, this, &Menus::showing);
    connect(menu, &QMenu::aboutToHide, this, &Menus::hidden);
}

void Menus::addAction(const CommandRow& row, QWidget& window) {
    QAction*& action = m_actions[static_cast<std::size_t>(row.command)];
    if (action == nullptr) {
        action = new QAction(&window);
    }
    action->setObjectName(QLatin1String(row.name));
    action->setCheckable(row.checkable);
    action->setAutoRepeat(false); // A finger that stays on a key wants one picture.
    action->setEnabled(row.availability == Availability::Always);
    if (row.shortcut != QKeyCombination()) {
        action->setShortcut(row.shortcut);
        action->setShortcutContext(Qt::ApplicationShortcut);
        window.addAction(action);
    }
}

void Menus::fill(QMenu& menu, const MenuRow& row) {
    for (const auto& item : row.items) {
        if (item) {
            menu.addAction(&action(*item));
        } else {
            menu.addSeparator();
        }
    }
}

void Menus::makeNSMenu() {
    for (std::size_t i = 0; i < m_menus.size(); ++i) {
        if (const MenuRow& row = menuTable()[i]; !row.opener) {
            m_menus[i]->setTitle(textOf(row.key));
        }
    }
    for (const CommandRow& each : commandTable()) {
        const QString title = textOf(each.key);
        action(each.command)
            .setText(title.contains(QStringLiteral("%1")) ? title.arg(QCoreApplication::applicationName()) : title);
    }
}

void Menus::validate() {
    for (QAction* action : std::exchange(m_resting, {})) {
        action->setEnabled(true);
    }
    const bool open = m_isPreferencesOpen();
    for (const CommandRow& each : commandTable()) {
        if (QAction& item = action(each.command); item.isEnabled() && !validateMenuItem(each.action, open)) {
            item.setEnabled(false);
            m_resting.push_back(&item);
        }
    }
}

QAction& Menus::actionOf(MenuItem item) const {
    const auto found = std::ranges::find(commandTable(), menuItemNames[static_cast<std::size_t>(item)],
                                         [](const CommandRow& row) { return std::string_view(row.name); });
    return action(found->command);
}

bool Menus::isEnabled(MenuItem item) const {
    return actionOf(item).isEnabled();
}

void Menus::setEnabled(MenuItem item, bool enabled) {
    actionOf(item).setEnabled(enabled);
}

} // namespace starbloom
