// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QKeySequence>

#include <cstddef>
#include <span>

namespace starbloom {

/// What a person can do from the menus.
enum class Command : std::size_t {
    FileExport,
    FileExport2,
    FileExportsettings,
    AppQuit,
    AppPreferences,
    EmitterAnimation,
    EmitterReset,
    WindowMinimize,
    WindowOpensettings,
    WindowFullscreen,
};

enum class CommandMenu : std::size_t { File, Edit, Emitter, Window };

/// One item of a menu. The table is all that menus are built from.
struct CommandRow {
    Command command;
    const char* name; ///< Under which the item is known everywhere.
    const char* key;  ///< Of its title; the application's name replaces a placeholder.
    CommandMenu menu;
    bool opensGroup;       ///< A line stands above it.
    QKeySequence shortcut; ///< Works in all windows of the application.
    bool checkable;
};

struct MenuRow {
    CommandMenu menu;
    const char* name;
    const char* key;
};

/// In the order of the menu bar, and from top to bottom within each menu.
std::span<const MenuRow> menuTable();
std::span<const CommandRow> commandTable();

} // namespace starbloom
