// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/FilePanel.h"
#include "persistence/files/MenuSnapshot.h"
#include "persistence/files/SharedFolder.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace starbloom {

/// The command that lets the user choose the folder for exported pictures. While the panel is open the menus are
/// suspended. One thread. What it refers to must outlive it, and it the panel's answer.
class SharedFolderChoice {
public:
    /// `file` is where the folder is kept. `show` puts a folder into the path control; it must be set.
    SharedFolderChoice(FilePanel& panel, MenuSnapshot& menus, std::filesystem::path file,
                       std::function<void(const SharedFolder& folder)> show);

    /// Opens the panel with a message and title in the user's language, in a folder that startFolder() has found.
    /// A choice is shown and saved, and then what was saved is shown; cancelling changes nothing.
    void selectedSharedFolder(const std::string& message, const std::string& title,
                              const std::optional<std::filesystem::path>& start);

private:
    void answered(const std::optional<std::filesystem::path>& choice);

    FilePanel& m_panel;
    MenuSnapshot& m_menus;
    std::filesystem::path m_file;
    std::function<void(const SharedFolder&)> m_show;
};

} // namespace starbloom
