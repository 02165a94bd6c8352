// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MenuCommands.h"

#include "shell/AboutBox.h"
#include "shell/MainWindow.h"
#include "shell/Menus.h"

#include <QAction>

namespace starbloom {

MenuCommands::MenuCommands(MainWindow& window, MenuSnapshot& snapshot, const Surroundings& surroundings)
    : m_edit(window.menus())
    , m_windows(window.menus(), window)
    , m_help(window, snapshot, surroundings.fileManager)
    , m_printing(window, snapshot, surroundings.printSystem) {
    const Menus& menus = window.menus();
    const auto on = [&menus](Command command, auto& receiver, auto call) {
        QObject::connect(&menus.action(command), &QAction::triggered, &receiver, call);
    };
    on(Command::HelpSupport, m_help, &HelpCommands::supportHelp);
    on(Command::HelpUserguide, m_help, &HelpCommands::userguideHelp);
    on(Command::FilePrint, m_printing, &Printing::printPlain);
    on(Command::FilePrintsetup, m_printing, &Printing::setUpPage);
    on(Command::AppAbout, window, [&window] { showAboutBox(window); });
}

} // namespace starbloom
