// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QKeyCombination>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace starbloom {

/// What a person can do from the menus, and the submenus that hold some of it. In the order in which the titles are
/// set, which is not the order of the menus.
enum class Command : std::size_t {
    AppAbout,
    AppHideapp,
    AppQuit,
    AppPreferences,
    AppQuicktour,
    AppSavesettings,
    AppLoadsettings,
    AppDefaultsettings,
    AppServices,
    AppHideothers,
    AppShowall,
    FileNew,
    FileOpen,
    FileClose,
    FileSave,
    FileSaveAs,
    FileExportsettings,
    FileExport,
    FileExport2,
    FilePrintsetup,
    FilePrint,
    EditUndo,
    EditRedo,
    EditCut,
    EditCopy,
    EditPaste,
    EditPastematch,
    EditDelete,
    EditSelectall,
    EditFind,
    EditSpelling,
    EditSubstitute,
    EditTransform,
    EditSpeech,
    EditFindfind,
    EditFindreplace,
    EditFindnext,
    EditFindprev,
    EditFinduseselect,
    EditFindjump,
    EditSpellshow,
    EditSpellcheckdoc,
    EditSpellcheckspell,
    EditSpellcheckgrammar,
    EditSpellcorrect,
    EditSubstshow,
    EditSubstsmartcopy,
    EditSubstsmartquotes,
    EditSubstsmartdashes,
    EditSubstsmartlinks,
    EditSubstdata,
    EditSubsttext,
    EditTransupper,
    EditTranslower,
    EditTranscapital,
    EditSpeechstart,
    EditSpeechstop,
    ToolbarShow,
    ToolbarCustomize,
    EmitterShow,
    EmitterAnimation,
    EmitterReset,
    WindowMinimize,
    WindowZoom,
    WindowOpensettings,
    WindowBringfront,
    WindowFullscreen,
    HelpUserguide,
    HelpSupport,
};

/// When a command can be chosen, unless another part of the program disables it for a while.
enum class Availability {
    Always,
    WithText, ///< While a text field has the focus, as far as it makes sense there.
    Never,    ///< It has no meaning on this desktop; its place in the menu is kept.
};

/// One item of a menu. This table and the one of the menus are all that menus are built from.
struct CommandRow {
    Command command;
    const char* name; ///< Under which the item is known everywhere.
    const char* key;  ///< Of its title; the application's name replaces a placeholder.
    Availability availability = Availability::Always;
    QKeyCombination shortcut = {}; ///< Works in all windows of the application. None by default.
    bool checkable = false;
    const char* action = ""; ///< What is sent when it is chosen; empty where the toolkit has the command.
};

/// A menu of the bar, or a submenu, which hangs below its command.
struct MenuRow {
    const char* name;
    const char* key;                               ///< Of its title; a submenu has its command's.
    std::optional<Command> opener;                 ///< Of a submenu.
    std::span<const std::optional<Command>> items; ///< From top to bottom; nothing is a line.
};

/// The row of each command, in the order of Command.
std::span<const CommandRow> commandTable();

/// The menus in the order of the menu bar, then the submenus.
std::span<const MenuRow> menuTable();

const CommandRow& row(Command command);

/// Whether an item with this action may be enabled while a menu is shown: eight actions rest while the preferences are
/// open, whatever else is decided about their items.
bool validateMenuItem(std::string_view action, bool isPreferencesOpen);

} // namespace starbloom
