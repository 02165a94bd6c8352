// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Commands.h"

#include <array>

namespace starbloom {

std::span<const MenuRow> menuTable() {
    static constexpr std::array<MenuRow, 4> table{{
        {CommandMenu::File, "fileMenu", "makeMenuFile"},
        {CommandMenu::Edit, "editMenu", "makeMenuEdit"},
        {CommandMenu::Emitter, "emitterMenu", "makeMenuEmitter"},
        {CommandMenu::Window, "windowMenu", "makeMenuWindow"},
    }};
    return table;
}

std::span<const CommandRow> commandTable() {
    using enum Command;
    using Menu = CommandMenu;
    // Key sequences are made at run time, so the table is, too.
    static const std::array<CommandRow, 10> table{{
        {FileExport, "fileExport", "makeMenuFileExport", Menu::File, false, Qt::CTRL | Qt::Key_E, false},
        {FileExport2, "fileExport2", "makeMenuFileExport2", Menu::File, false, Qt::CTRL | Qt::SHIFT | Qt::Key_E, false},
        {FileExportsettings, "fileExportsettings", "makeMenuFileExportsettings", Menu::File, false, {}, false},
        {AppQuit, "appQuit", "makeMenuAppQuit", Menu::File, true, Qt::CTRL | Qt::Key_Q, false},
        {AppPreferences, "appPreferences", "makeMenuAppPreferences", Menu::Edit, false, Qt::CTRL | Qt::Key_Comma,
         false},
        // The key that starts a presentation elsewhere. Space, the obvious one, belongs to whatever has the focus.
        {EmitterAnimation, "emitterAnimation", "makeMenuEmitterAnimation", Menu::Emitter, false, Qt::Key_F5, true},
        {EmitterReset, "emitterReset", "makeMenuEmitterReset", Menu::Emitter, false, Qt::CTRL | Qt::Key_R, false},
        {WindowMinimize, "windowMinimize", "makeMenuWindowMinimize", Menu::Window, false, Qt::CTRL | Qt::Key_M, false},
        {WindowOpensettings, "windowOpensettings", "makeMenuWindowOpensettings", Menu::Window, true, Qt::Key_F9, false},
        {WindowFullscreen, "windowFullscreen", "makeMenuWindowFullscreen", Menu::Window, true, Qt::Key_F11, true},
    }};
    return table;
}

} // namespace starbloom
