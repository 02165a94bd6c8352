// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ExportGate.h"

#include "shell/Menus.h"
#include "shell/Toolbar.h"
#include "views/SegmentedControl.h"

#include <QAction>

#include <utility>

namespace starbloom {

ExportGate::ExportGate(Menus& menus, Toolbar& toolbar, Conditions conditions)
    : m_menus(menus)
    , m_toolbar(toolbar)
    , m_conditions(std::move(conditions)) {}

bool ExportGate::isPossible() const {
    return m_conditions.folderIsKnown() && m_toolbar.onoffControl().selectedSegment() == Toolbar::onSegment &&
           m_conditions.nameIsValid();
}

void ExportGate::validateImageExport() {
    const bool possible = isPossible();
    m_menus.action(Command::FileExport).setEnabled(possible);
    m_menus.action(Command::FileExport2).setEnabled(possible);
    for (const ToolItem item : {ToolItem::Savepict, ToolItem::Savemovie}) {
        m_toolbar.editToolItem(item, possible ? QStringLiteral("1") : QStringLiteral("0"));
    }
}

} // namespace starbloom
