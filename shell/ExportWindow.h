// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "export/picture/PictureFormat.h"
#include "persistence/files/ExportSettings.h"
#include "persistence/files/MenuSnapshot.h"
#include "persistence/stores/Stores.h"

#include <QDialog>

#include <filesystem>
#include <memory>
#include <string>

namespace Ui {
class ExportWindow;
}

namespace starbloom {

/// How pictures are exported: format, compression and base name. Exporting reads the controls as they are, kept or not.
///
/// Modal to the application, without an event loop of its own. Saving keeps the settings and leaves the window open.
/// While the name is not valid the button that closes the window is disabled, and so are Escape and the close box: a
/// name that stops all exports is to be seen. The controls are made when the window is opened for the first time. What
/// it refers to must outlive it. GUI thread.
class ExportWindow final : public QDialog {
    Q_OBJECT

public:
    ExportWindow(std::filesystem::path settingsFile, Stores& stores, MenuSnapshot& menus, DelayedCalls& calls,
                 QWidget& mainWindow);
    ~ExportWindow() override;

    /// Does nothing while the window is open.
    void showExportFrame();

    bool isExportOpen() const { return m_open; }

    /// Takes the settings from the file. Without one the name is "Picture" and the others stay as they are.
    void loadSettings3();

    PictureFormat format() const { return static_cast<PictureFormat>(m_chosen.format); }

    int compression() const { return m_chosen.compression; } ///< Index in the pop-up.

    const std::string& name() const { return m_chosen.name; }

    bool nameIsValid() const;

    void save3Clicked();
    void cancel3Clicked();

    /// As the cancel button.
    void reject() override;

signals:
    /// Whether exporting is possible is to be found out again: the name is another, or the window has closed.
    void changed();

private:
    void makeControls();
    void fill();
    void showChosen();
    void format3Selected();
    void nameChanged();
    void showValidity();

    std::filesystem::path m_file;
    Stores& m_stores;
    MenuSnapshot& m_menus;
    DelayedCalls& m_calls;
    QWidget& m_mainWindow;
    ExportSettings m_chosen;                ///< What the controls show.
    std::unique_ptr<Ui::ExportWindow> m_ui; ///< Nothing until the window is opened.
    bool m_open = false;
    PendingCall m_pendingEnable;
};

} // namespace starbloom
