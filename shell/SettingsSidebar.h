// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "persistence/files/WindowFrames.h"
#include "persistence/stores/Stores.h"
#include "shell/FrameKeeper.h"

#include <QWidget>

namespace starbloom {

class SliderPanel;

/// The window with the fourteen sliders, beside the main window. Hidden or shown, never rebuilt.
///
/// Borrows the panel, which is its child while it lives and is handed back at the end. Where it is goes to the memory,
/// for the next opening, and to the store, for the next run. All that it refers to must outlive it. Lives on the GUI
/// thread. May throw StoreFailure out of the event loop, see KeyValueStore.
class SettingsSidebar final : public QWidget {
    Q_OBJECT

public:
    SettingsSidebar(SliderPanel& panel, QWidget& mainWindow, Stores& stores, WindowFrameMemory& memory,
                    DelayedCalls& calls);
    ~SettingsSidebar() override;

    /// Shows the window where it was, or else at its place by the main window. Does nothing while it is open.
    void openSettings();

signals:
    /// It is about to be shown; its sliders may still be set.
    void opening();
    void opened();
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void sidebarSaveFrame(const Frame& frame);

    SliderPanel& m_panel;
    QWidget& m_mainWindow;
    Stores& m_stores;
    WindowFrameMemory& m_memory;
    FrameKeeper m_keeper;
};

} // namespace starbloom
