// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/FilePanel.h"

#include <QObject>

#include <functional>

class QWidget;

namespace starbloom {

/// The desktop's panel for files and folders. It is modal to the application and does not hold up the caller.
///
/// Open panels close, without an answer, when this object is destroyed or the window that they belong to. Lives on the
/// GUI thread.
class DesktopFilePanel final : public FilePanel {
public:
    /// Tells, each time a panel opens, the window that it belongs to; null leaves it to stand alone.
    using Parent = std::function<QWidget*()>;

    /// Unless told otherwise, panels belong to the modal window that is open, or else to the main window.
    explicit DesktopFilePanel(Parent parent = usualParent);

    static QWidget* usualParent();

    void ask(const FilePanelRequest& request,
             std::function<void(std::optional<std::filesystem::path> choice)> answer) override;

private:
    Parent m_parent;
    QObject m_alive; ///< What the open panels are tied to.
};

} // namespace starbloom
