// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/DropReceiver.h"

#include <QIcon>
#include <QWidget>

#include <deque>
#include <memory>
#include <optional>

class QMimeData;
class QUrl;

namespace starbloom {

/// A well for picture files: what is dragged here from the file manager is opened by the receiver, one file after the
/// other in the order in which they lie in the drag.
///
/// Folders, pictures that are too small and what is no picture are skipped without a message. GUI thread; the sizes
/// are found out by the receiver, which does not keep the window waiting.
class DropView : public QWidget {
    Q_OBJECT

public:
    explicit DropView(QWidget* parent = nullptr);

    /// Must outlive the view, or be replaced; without one, nothing is opened.
    void setReceiver(DropReceiver* receiver) { m_receiver = receiver; }

    /// Whether drops are taken; at first they are. While they are refused the pointer goes on promising a copy.
    void changeDropstatus(bool canDrop) { m_canDrop = canDrop; }

    bool prepareForDragOperation() const { return m_canDrop; }

    /// Has the files opened, some of them after this has returned. Always true.
    bool performDragOperation(const QMimeData& pasteboard);

    /// The path of a file's address, byte by byte; empty for what is no file of this machine.
    static std::filesystem::path convertPath(const QUrl& url);

    /// Whether the path is a folder's. A package, a folder that is one thing to its user, is one only on demand.
    static bool isPathDirectory(const std::filesystem::path& path, bool packagesAsFolders);

    QSize sizeHint() const override { return {48, 48}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    /// A file that waits for its size, or for the files before it.
    struct Dropped {
        std::filesystem::path path;
        std::optional<QSize> size = {};
    };

    void openMeasured();

    QIcon m_myImage;
    DropReceiver* m_receiver = nullptr;
    bool m_canDrop = true;
    std::deque<std::shared_ptr<Dropped>> m_dropped; ///< In the order of the drag.
};

} // namespace starbloom
