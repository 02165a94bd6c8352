// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Commands.h"

#include <algorithm>
#include <array>

namespace starbloom {

namespace {

using enum Command;
using enum Availability;

constexpr std::size_t commandCount = static_cast<std::size_t>(HelpSupport) + 1;

constexpr QKeyCombination noKey;

constexpr std::array<CommandRow, commandCount> commands{{
    {AppAbout, "appAbout", "makeMenuAppAbout"},
    {AppHideapp, "appHideapp", "makeMenuAppHide"},
    {AppQuit, "appQuit", "makeMenuAppQuit", Always, Qt::CTRL | Qt::Key_Q},
    {AppPreferences, "appPreferences", "makeMenuAppPreferences", Always, Qt::CTRL | Qt::Key_Comma, false,
     "preferencesApp:"},
    {AppQuicktour, "appQuicktour", "makeMenuAppQuicktour", Always, Qt::CTRL | Qt::SHIFT | Qt::Key_Q, false,
     "quicktourApp:"},
    {AppSavesettings, "appSavesettings", "makeMenuAppSavesettings", Always, noKey, false, "savesettingsApp:"},
    {AppLoadsettings, "appLoadsettings", "makeMenuAppLoadsettings", Always, noKey, false, "loadsettingsApp:"},
    {AppDefaultsettings, "appDefaultsettings", "makeMenuAppDefaultsettings", Always, noKey, false,
     "defaultsettingsApp:"},
    {AppServices, "appServices", "makeMenuAppServices", Never},
    {AppHideothers, "appHideothers", "makeMenuAppHideothers", Never},
    {AppShowall, "appShowall", "makeMenuAppShowall"},

    {FileNew, "fileNew", "makeMenuFileNew", Never},
    {FileOpen, "fileOpen", "makeMenuFileOpen", Always, Qt::CTRL | Qt::Key_O, false, "openDocument:"},
    {FileClose, "fileClose", "makeMenuFileClose", Always, Qt::CTRL | Qt::Key_W},
    {FileSave, "fileSave", "makeMenuFileSave", Never},
    {FileSaveAs, "fileSaveAs", "makeMenuFileSaveAs", Never},
    {FileExportsettings, "fileExportsettings", "makeMenuFileExportsettings", Always, noKey, false,
     "exportsettingsFile:"},
    {FileExport, "fileExport", "makeMenuFileExport", Always, Qt::CTRL | Qt::Key_E, false, "exportFile:"},
    {FileExport2, "fileExport2", "makeMenuFileExport2", Always, Qt::CTRL | Qt::SHIFT | Qt::Key_E, false,
     "export2File:"},
    {FilePrintsetup, "filePrintsetup", "makeMenuFilePrintsetup", Always, Qt::CTRL | Qt::SHIFT | Qt::Key_P},
    {FilePrint, "filePrint", "makeMenuFilePrint", Always, Qt::CTRL | Qt::Key_P, false, "printDocument:"},

    {EditUndo, "editUndo", "makeMenuEditUndo", WithText, Qt::CTRL | Qt::Key_Z},
    {EditRedo, "editRedo", "makeMenuEditRedo", WithText, Qt::CTRL | Qt::SHIFT | Qt::Key_Z},
    {EditCut, "editCut", "makeMenuEditCut", WithText, Qt::CTRL | Qt::Key_X},
    {EditCopy, "editCopy", "makeMenuEditCopy", WithText, Qt::CTRL | Qt::Key_C},
    {EditPaste, "editPaste", "makeMenuEditPaste", WithText, Qt::CTRL | Qt::Key_V},
    {EditPastematch, "editPastematch", "makeMenuEditPastematch", WithText, Qt::CTRL | Qt::SHIFT | Qt::Key_V},
    {EditDelete, "editDelete", "makeMenuEditDelete", WithText},
    {EditSelectall, "editSelectall", "makeMenuEditSelectall", WithText, Qt::CTRL | Qt::Key_A},
    {EditFind, "editFind", "makeMenuEditFind"},
    {EditSpelling, "editSpelling", "makeMenuEditSpelling"},
    {EditSubstitute, "editSubstitute", "makeMenuEditSubstitute"},
    {EditTransform, "editTransform", "makeMenuEditTransform"},
    {EditSpeech, "editSpeech", "makeMenuEditSpeech"},
    {EditFindfind, "editFindfind", "makeMenuEditFindFind", Never},
    {EditFindreplace, "editFindreplace", "makeMenuEditFindReplace", Never},
    {EditFindnext, "editFindnext", "makeMenuEditFindNext", Never},
    {EditFindprev, "editFindprev", "makeMenuEditFindPrev", Never},
    {EditFinduseselect, "editFinduseselect", "makeMenuEditFindUseselect", Never},
    {EditFindjump, "editFindjump", "makeMenuEditFindJump", Never},
    {EditSpellshow, "editSpellshow", "makeMenuEditSpellShow", Never},
    {EditSpellcheckdoc, "editSpellcheckdoc", "makeMenuEditSpellCheckdoc", Never},
    {EditSpellcheckspell, "editSpellcheckspell", "makeMenuEditSpellCheckspell", Never},
    {EditSpellcheckgrammar, "editSpellcheckgrammar", "makeMenuEditSpellCheckgram", Never},
    {EditSpellcorrect, "editSpellcorrect", "makeMenuEditSpellCorrect", Never},
    {EditSubstshow, "editSubstshow", "makeMenuSubstShow", Never},
    {EditSubstsmartcopy, "editSubstsmartcopy", "makeMenuSubstSmartcopy", Never},
    {EditSubstsmartquotes, "editSubstsmartquotes", "makeMenuSubstSmartquo", Never},
    {EditSubstsmartdashes, "editSubstsmartdashes", "makeMenuSubstSmartdash", Never},
    {EditSubstsmartlinks, "editSubstsmartlinks", "makeMenuSubstSmartlinks", Never},
    {EditSubstdata, "editSubstdata", "makeMenuSubstData", Never},
    {EditSubsttext, "editSubsttext", "makeMenuSubstText", Never},
    {EditTransupper, "editTransupper", "makeMenuEditTransformUpp", WithText},
    {EditTranslower, "editTranslower", "makeMenuEditTransformLow", WithText},
    {EditTranscapital, "editTranscapital", "makeMenuEditTransformCap", WithText},
    {EditSpeechstart, "editSpeechstart", "makeMenuEditSpeechStart", Never},
    {EditSpeechstop, "editSpeechstop", "makeMenuEditSpeechStop", Never},

    {ToolbarShow, "toolbarShow", "makeMenuToolbarShow", Always, noKey, true},
    {ToolbarCustomize, "toolbarCustomize", "makeMenuToolbarCustomize", Never},

    {EmitterShow, "emitterShow", "makeMenuEmitterShow", Always, noKey, false, "showEmitter:"},
    // The key that starts a presentation elsewhere. Space, the obvious one, belongs to whatever has the focus.
    {EmitterAnimation, "emitterAnimation", "makeMenuEmitterAnimation", Always, Qt::Key_F5, true},
    {EmitterReset, "emitterReset", "makeMenuEmitterReset", Always, Qt::CTRL | Qt::Key_R},

    {WindowMinimize, "windowMinimize", "makeMenuWindowMinimize", Always, Qt::CTRL | Qt::Key_M},
    {WindowZoom, "windowZoom", "makeMenuWindowZoom", Always, noKey, true},
    {WindowOpensettings, "windowOpensettings", "makeMenuWindowOpensettings", Always, Qt::Key_F9, false,
     "setttingsWindow:"},
    {WindowBringfront, "windowBringfront", "makeMenuWindowBringfront"},
    {WindowFullscreen, "windowFullscreen", "makeMenuWindowFullscreen", Always, Qt::Key_F11, true},

    {HelpUserguide, "helpUserguide", "makeMenuHelpUserguide", Always, Qt::Key_F1, false, "userguideHelp:"},
    {HelpSupport, "helpSupport", "makeMenuHelpSupport", Always, noKey, false, "supportHelp:"},
}};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < commands.size(); ++i) {
        if (commands[i].command != static_cast<Command>(i)) {
            return false;
        }
    }
    return true;
}

static_assert(isInOrder(), "the table is looked up by position");

using Item = std::optional<Command>;
constexpr Item line = std::nullopt;

constexpr Item fileItems[] = {FileNew,    FileOpen,    FileClose, FileSave,       FileSaveAs, line, FileExportsettings,
                              FileExport, FileExport2, line,      FilePrintsetup, FilePrint,  line, AppQuit};
constexpr Item editItems[] = {EditUndo,       EditRedo,      line,          EditCut, EditCopy,      EditPaste,
                              EditPastematch, EditDelete,    EditSelectall, line,    EditFind,      EditSpelling,
                              EditSubstitute, EditTransform, EditSpeech,    line,    AppPreferences};
constexpr Item toolbarItems[] = {ToolbarShow, ToolbarCustomize};
constexpr Item emitterItems[] = {EmitterShow,     EmitterAnimation, EmitterReset,      line,
                                 AppSavesettings, AppLoadsettings,  AppDefaultsettings};
constexpr Item windowItems[] = {WindowMinimize,   WindowZoom, line,       WindowOpensettings, WindowFullscreen, line,
                                WindowBringfront, line,       AppHideapp, AppHideothers,      AppShowall};
constexpr Item helpItems[] = {HelpUserguide, HelpSupport, AppQuicktour, line, AppServices, line, AppAbout};
constexpr Item findItems[] = {EditFindfind, EditFindreplace,   EditFindnext,
                              EditFindprev, EditFinduseselect, EditFindjump};
constexpr Item spellingItems[] = {EditSpellshow,       EditSpellcheckdoc,     line,
                                  EditSpellcheckspell, EditSpellcheckgrammar, EditSpellcorrect};
constexpr Item substituteItems[] = {
    EditSubstshow,       line,          EditSubstsmartcopy, EditSubstsmartquotes, EditSubstsmartdashes,
    EditSubstsmartlinks, EditSubstdata, EditSubsttext};
constexpr Item transformItems[] = {EditTransupper, EditTranslower, EditTranscapital};
constexpr Item speechItems[] = {EditSpeechstart, EditSpeechstop};

constexpr MenuRow menus[] = {
    {"fileMenu", "makeMenuFile", {}, fileItems},
    {"editMenu", "makeMenuEdit", {}, editItems},
    {"toolbarMenu", "makeMenuToolbar", {}, toolbarItems},
    {"emitterMenu", "makeMenuEmitter", {}, emitterItems},
    {"windowMenu", "makeMenuWindow", {}, windowItems},
    {"helpMenu", "makeMenuHelp", {}, helpItems},
    {"editFindMenu", "", EditFind, findItems},
    {"editSpellingMenu", "", EditSpelling, spellingItems},
    {"editSubstituteMenu", "", EditSubstitute, substituteItems},
    {"editTransformMenu", "", EditTransform, transformItems},
    {"editSpeechMenu", "", EditSpeech, speechItems},
    {"appServicesMenu", "", AppServices, {}},
};

} // namespace

std::span<const CommandRow> commandTable() {
    return commands;
}

std::span<const MenuRow> menuTable() {
    return menus;
}

const CommandRow& row(Command command) {
    return commands[static_cast<std::size_t>(command)];
}

bool validateMenuItem(std::string_view action, bool isPreferencesOpen) {
    static constexpr std::string_view resting[] = {
        "appPreferences1:", "viewShow1:",         "viewToolbar1:", "windowMinimize1:",
        "windowZoom1:",     "windowBringfront1:", "helpUguide1:",  "windowSupport1:"};
    return !isPreferencesOpen || std::ranges::find(resting, action) == std::end(resting);
}

} // namespace starbloom
