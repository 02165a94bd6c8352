// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/MenuSnapshot.h"
#include "shell/FileManager.h"

#include <QObject>
#include <QUrl>

class QWidget;

namespace starbloom {

/// Where help is found on the web. The hosts are decided when the program is built, the rest is fixed.
QUrl supportPage();
QUrl userguidePage();

/// The help commands. Each opens a page in the user's browser, after it was allowed to in a sheet on the main window;
/// meanwhile the menus rest. A page that cannot be opened is not reported.
///
/// What it refers to must outlive it. GUI thread.
class HelpCommands final : public QObject {
    Q_OBJECT

public:
    /// How an alert was answered.
    static constexpr int firstButton = 1000;
    static constexpr int secondButton = 1001;

    HelpCommands(QWidget& window, MenuSnapshot& menus, FileManager& desktop);

    void supportHelp();
    void userguideHelp();

    // How the sheets end: of no page in particular, of the support page's, and of the user guide's.
    void endOfAlert10(int code);
    void endOfAlert100(int code);
    void endOfAlert101(int code);

private:
    void ask(const QString& name, const QString& question, void (HelpCommands::*ended)(int code));

    /// Gives the menus back for either button, and opens the page, if there is one, for the first. Anything else is no
    /// answer.
    void end(int code, const QUrl& page);

    QWidget& m_window;
    MenuSnapshot& m_menus;
    FileManager& m_desktop;
};

} // namespace starbloom
