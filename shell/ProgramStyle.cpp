// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ProgramStyle.h"

#include "views/SymbolIcon.h"

#include <QIcon>

namespace starbloom {

ProgramStyle::ProgramStyle(const QString& name)
    : QProxyStyle(name) {}

QIcon ProgramStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
    if (icon == SP_ToolBarHorizontalExtensionButton || icon == SP_ToolBarVerticalExtensionButton) {
        return symbolIcon(u"more");
    }
    return QProxyStyle::standardIcon(icon, option, widget);
}

} // namespace starbloom
