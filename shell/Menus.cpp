// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Menus.h"

#include "views/Texts.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>
#include <string_view>

namespace starbloom {

Menus::Menus(QMenuBar& bar, QWidget& window)
    : QObject(&window)
    , m_actions(commandTable().size()) {
    for (const MenuRow& row : menuTable()) {
        auto* menu = bar.addMenu(QString());
        menu->setObjectName(QLatin1String(row.name));
        m_menus.push_back(menu);
    }
    for (const CommandRow& row : commandTable()) {
        auto* action = new QAction(&window);
        action->setObjectName(QLatin1String(row.name));
        action->setShortcut(row.shortcut);
        action->setShortcutContext(Qt::ApplicationShortcut);
        action->setCheckable(row.checkable);
        action->setAutoRepeat(false); // A finger that stays on a key wants one picture.
        window.addAction(action);
        QMenu& menu = *m_menus[static_cast<std::size_t>(row.menu)];
        if (row.opensGroup) {
            menu.addSeparator();
        }
        menu.addAction(action);
        m_actions[static_cast<std::size_t>(row.command)] = action;
    }
}

void Menus::makeNSMenu() {
    const auto titles = menuTable();
    for (std::size_t i = 0; i < titles.size(); ++i) {
        m_menus[i]->setTitle(textOf(titles[i].key));
    }
    for (const CommandRow& row : commandTable()) {
        const QString title = textOf(row.key);
        action(row.command)
            .setText(title.contains(QStringLiteral("%1")) ? title.arg(QCoreApplication::applicationName()) : title);
    }
}

QAction* Menus::actionOf(MenuItem item) const {
    const auto rows = commandTable();
    const auto found = std::ranges::find(rows, menuItemNames[static_cast<std::size_t>(item)],
                                         [](const CommandRow& row) { return std::string_view(row.name); });
    return found == rows.end() ? nullptr : &action(found->command);
}

bool Menus::isEnabled(MenuItem item) const {
    const QAction* action = actionOf(item);
    return action != nullptr && action->isEnabled();
}

void Menus::setEnabled(MenuItem item, bool enabled) {
    if (QAction* action = actionOf(item)) {
        action->setEnabled(enabled);
    }
}

} // namespace starbloom
