// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace starbloom {

/// The commands that a modal task suspends, in the snapshot's order. Quitting, the guide's command and the window
/// system's own commands are not among them and stay as they are.
enum class MenuItem : std::size_t {
    AppPreferences,
    AppQuicktour,
    AppSavesettings,
    AppLoadsettings,
    AppDefaultsettings,
    FileOpen,
    FileClose,
    FileSave,
    FileSaveAs,
    FileExportsettings,
    FileExport,
    FileExport2,
    FilePrint,
    FilePrintsetup,
    WindowOpensettings,
    HelpSupport,
    HelpUserguide,
};

inline constexpr std::size_t menuItemCount = 17;

/// Under which name each item is known in the menus.
inline constexpr std::array<std::string_view, menuItemCount> menuItemNames{
    "appPreferences", "appQuicktour",   "appSavesettings",    "appLoadsettings",    "appDefaultsettings", "fileOpen",
    "fileClose",      "fileSave",       "fileSaveAs",         "fileExportsettings", "fileExport",         "fileExport2",
    "filePrint",      "filePrintsetup", "windowOpensettings", "helpSupport",        "helpUserguide",
};

/// The menus' items, as MenuSnapshot sees them.
class MenuItems {
public:
    virtual ~MenuItems() = default;
    virtual bool isEnabled(MenuItem item) const = 0;
    virtual void setEnabled(MenuItem item, bool enabled) = 0;
};

/// Suspends the menus while a modal task runs, and gives each item back as it was. In memory only, one thread. The
/// items must outlive it.
///
/// Each save is paired with one load. There is no counter of nesting: a second save before a load records seventeen
/// disabled items, so the next load leaves all of them disabled.
class MenuSnapshot {
public:
    explicit MenuSnapshot(MenuItems& items)
        : m_items(items) {}

    /// Records which items are enabled, in place of what was recorded before, and disables all of them.
    void saveMenuStatus();

    /// Enables the items that were enabled at the last save and disables the others; all of them if there was no save.
    /// The record stays.
    void loadMenuStatus();

    /// An item is to be enabled or disabled for a reason of its own. While the menus rest, that counts from the next
    /// load on.
    void setEnabled(MenuItem item, bool enabled);

private:
    MenuItems& m_items;
    std::optional<std::array<bool, menuItemCount>> m_enabled;
    bool m_resting = false; ///< Between a save and its load.
};

} // namespace starbloom
