// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/FilePanel.h"
#include "persistence/files/MenuSnapshot.h"
#include "persistence/stores/Stores.h"

#include <QDialog>

#include <array>
#include <memory>

class QCheckBox;

namespace Ui {
class preferencesWindow;
}

namespace starbloom {

class FolderField;

inline constexpr int preferenceSwitchCount = 12;

/// The preferences: twelve switches and two folders, kept when the user saves, and controls for exporting that nothing
/// uses yet.
///
/// Modal to the whole application, without an event loop of its own: openPreferences() returns at once. What is shown
/// comes from the stores at each opening; edits go back only by saving. The menus rest in between. Escape and the
/// window's close box do what the close button does. A store that fails while saving throws StoreFailure out of the
/// event loop and leaves the window open, with all that was entered.
///
/// What it refers to must outlive it. Lives on the GUI thread.
class PreferencesWindow : public QDialog {
    Q_OBJECT

public:
    PreferencesWindow(Stores& stores, const DocumentsFolder& documents, MenuSnapshot& menus, FilePanel& panel,
                      QWidget& mainWindow);
    ~PreferencesWindow() override;

    /// Does nothing while the window is open.
    void openPreferences();

    bool isPreferencesOpen() const { return m_open; }

    // Fill the controls from the stores' mirrors, as each opening does.
    void showFolders(const PreferenceFolders& folders);
    void showSwitches();

    /// Whether a switch, 1 to preferenceSwitchCount, is on in the window, saved or not.
    bool isSwitchOn(int number) const;

    void systempop1pSelected();
    void systempop2pSelected();
    void default1pClicked();
    void default2pClicked();
    void compress2pChanged(int value);
    void close1pClicked();
    void save1pClicked();

    /// Closes without saving.
    void reject() override;

signals:
    /// The window has closed; what was saved is in the stores.
    void closed();

protected:
    void changeEvent(QEvent* event) override;

private:
    void fillExporting();
    void connectControls();
    void fitColumns();
    void place();
    void leave();

    Stores& m_stores;
    const DocumentsFolder& m_documents;
    MenuSnapshot& m_menus;
    QWidget& m_mainWindow;
    std::unique_ptr<Ui::preferencesWindow> m_ui;
    std::array<QCheckBox*, preferenceSwitchCount> m_switches;
    std::unique_ptr<FolderField> m_openFolder;
    std::unique_ptr<FolderField> m_destinationFolder;
    bool m_open = false;
};

} // namespace starbloom
