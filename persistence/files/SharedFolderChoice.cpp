// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/SharedFolderChoice.h"

#include <utility>

namespace starbloom {

SharedFolderChoice::SharedFolderChoice(FilePanel& panel, MenuSnapshot& menus, std::filesystem::path file,
                                       std::function<void(const SharedFolder&)> show)
    : m_panel(panel)
    , m_menus(menus)
    , m_file(std::move(file))
    , m_show(std::move(show)) {}

void SharedFolderChoice::selectedSharedFolder(const std::string& message, const std::string& title,
                                              const std::optional<std::filesystem::path>& start) {
    m_menus.saveMenuStatus();
    m_panel.ask({.kind = FilePanelRequest::Kind::Folder,
                 .message = message,
                 .title = title,
                 .startFolder = start,
                 .canCreateFolders = true},
                [this](const std::optional<std::filesystem::path>& choice) { answered(choice); });
}

void SharedFolderChoice::answered(const std::optional<std::filesystem::path>& choice) {
    if (!choice) {
        m_menus.loadMenuStatus();
        return;
    }
    m_show(SharedFolder{*choice});
    m_menus.loadMenuStatus();
    m_show(saveSharedFolder(m_file, *choice));
}

} // namespace starbloom
