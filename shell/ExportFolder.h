// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/SharedFolderChoice.h"
#include "persistence/stores/Stores.h"

#include <QObject>

namespace starbloom {

class PathControl;

/// The folder for exports, as the toolbar's path control shows it and lets the user choose it.
///
/// What this refers to must outlive it. GUI thread.
class ExportFolder final : public QObject {
    Q_OBJECT

public:
    ExportFolder(PathControl& control, FilePanel& panel, MenuSnapshot& menus, const Stores& stores,
                 const DocumentsFolder& documents, std::filesystem::path file);

    /// Shows the folder that is kept, or the placeholder for an unknown one.
    void loadSharedFolder();

    /// Lets the user choose another one.
    void selectedSharedFolder();

    /// The folder that is kept, if it still exists. Looks at the disk.
    bool isKnown() const;

    /// The folder that is shown; nothing while the placeholder is.
    const std::optional<std::filesystem::path>& shown() const { return m_shown.folder; }

signals:
    /// Another folder may be kept: whether exporting is possible is to be found out again.
    void changed();

private:
    void show(const SharedFolder& folder);

    PathControl& m_control;
    const Stores& m_stores;
    const DocumentsFolder& m_documents;
    std::filesystem::path m_file;
    SharedFolder m_shown;
    SharedFolderChoice m_choice;
};

} // namespace starbloom
