// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace starbloom {

/// What a panel for choosing one file or folder shows.
struct FilePanelRequest {
    enum class Kind {
        Folder,
        File,    ///< One that exists.
        NewFile, ///< One to be written; when it exists, the panel has asked whether it may be replaced.
    };

    Kind kind = Kind::Folder;
    std::string message = {};                              ///< What the choice is for, in the user's language, UTF-8.
    std::string title = {};                                ///< The panel's title, in the user's language, UTF-8.
    std::optional<std::filesystem::path> startFolder = {}; ///< Nothing leaves the choice to the panel.
    bool canCreateFolders = false;
    std::string suggestedName = {};      ///< Of a new file, UTF-8.
    std::string extension = {};          ///< Of a new file, without the dot; the only one that is allowed.
    std::vector<std::string> types = {}; ///< Of an existing file: the extensions that are offered; none: any file.
    std::string typesName = {};          ///< What such files are called, in the user's language, UTF-8.
};

/// Asks the user for a file or folder. The shell implements it with a window, a test with prepared answers.
class FilePanel {
public:
    virtual ~FilePanel() = default;

    /// Shows the panel and answers once, on the same thread, with the choice, or with nothing when the user cancels.
    /// Returns at once; the answer may come before or after that, and never after the panel has been destroyed.
    virtual void ask(const FilePanelRequest& request,
                     std::function<void(std::optional<std::filesystem::path> choice)> answer) = 0;
};

} // namespace starbloom
