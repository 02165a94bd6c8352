// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <vector>

namespace starbloom {

class Menus;

/// The commands that close, hide and show the application's windows, whichever there are.
///
/// Both that it refers to must outlive it. GUI thread.
class WindowCommands final : public QObject {
    Q_OBJECT

public:
    WindowCommands(Menus& menus, QWidget& mainWindow);

    /// Closes the window that the user works in.
    void close();

    /// Minimizes all windows. Those that this minimized come back together, whichever of them the user asks the desktop
    /// for; that one comes to the front.
    void hideApp();

    /// Brings all windows back, the ones that are minimized, too.
    void showAll();

    /// Puts all windows that can be seen above those of other applications.
    void bringFront();

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QWidget& m_mainWindow;
    std::vector<QPointer<QWidget>> m_hidden;
};

} // namespace starbloom
