// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/EditCommands.h"
#include "shell/HelpCommands.h"
#include "shell/Printing.h"
#include "shell/Surroundings.h"
#include "shell/WindowCommands.h"

namespace starbloom {

class MainWindow;

/// The commands that have to do with the desktop and not with the show: editing text, windows, help, printing. Connects
/// them with the menus.
///
/// What it refers to must outlive it. GUI thread.
class MenuCommands {
public:
    MenuCommands(MainWindow& window, MenuSnapshot& snapshot, const Surroundings& surroundings);

private:
    EditCommands m_edit;
    WindowCommands m_windows;
    HelpCommands m_help;
    Printing m_printing;
};

} // namespace starbloom
