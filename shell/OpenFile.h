// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/FilePanel.h"
#include "persistence/files/MenuSnapshot.h"
#include "persistence/stores/Stores.h"
#include "shell/InputPause.h"
#include "shell/PictureSizes.h"
#include "views/DropReceiver.h"

#include <QObject>

#include <memory>
#include <string>

namespace starbloom {

/// The command that opens a picture file, and what happens to files that are dropped.
///
/// A file is checked and accepted or refused, both without a word: the display stays as it is, deliberately, for there
/// is no view yet that would show an opened picture. The menus are suspended from the panel's opening until the file
/// has been checked. What this refers to must outlive it. GUI thread.
class OpenFile : public QObject, public DropReceiver {
    Q_OBJECT

public:
    /// The program that reads the sizes of pictures is the usual one unless a test names another.
    OpenFile(FilePanel& panel, MenuSnapshot& menus, const Stores& stores, const DocumentsFolder& documents,
             QString sizeProgram = {});

    /// Lets the user choose a picture, and opens it.
    void openFile1();

    /// Accepts a file by its extension, in capitals or not. Gives the menus back if told to, whether or not it does.
    bool openImage2(const std::filesystem::path& path, bool restoreMenus) override;

    void getImageSize(const std::filesystem::path& path, std::function<void(const QSize& size)> answer) override;

    /// What follows the last dot in the name of the file, or of the folder; empty if there is none.
    static std::string getExtension(const std::filesystem::path& path);

private:
    std::filesystem::path startFolder() const;
    void answered(const std::optional<std::filesystem::path>& choice);
    void measured(const std::filesystem::path& path, const QSize& size);

    FilePanel& m_panel;
    MenuSnapshot& m_menus;
    const Stores& m_stores;
    const DocumentsFolder& m_documents;
    PictureSizes m_sizes;
    std::unique_ptr<InputPause> m_pause; ///< While the chosen file is being checked.
};

} // namespace starbloom
