// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "persistence/files/WindowFrames.h"
#include "persistence/stores/Stores.h"
#include "shell/FrameKeeper.h"

#include <QWidget>

namespace starbloom {

/// What tells one companion window from another.
struct CompanionKind {
    const char* objectName;
    const char* titleKey;
    int frameIndex; ///< Of its rows in the store.

    // What is its own in the memory: where it was, whether it is open, and where it opens.
    Frame WindowFrameMemory::*remembered;
    bool WindowFrameMemory::*isOpen;
    Frame (WindowFrameMemory::*openingFrame)(const Frame& mainWindow) const;
};

/// A window that accompanies the main window: above it, and gone with it. Hidden or shown, never rebuilt.
///
/// Where it is goes to the memory, for the next opening, and to the store. All that it refers to must outlive it. Lives
/// on the GUI thread. May throw StoreFailure out of the event loop, see KeyValueStore.
class CompanionWindow : public QWidget {
    Q_OBJECT

public:
    CompanionWindow(const CompanionKind& kind, QWidget& mainWindow, Stores& stores, WindowFrameMemory& memory,
                    DelayedCalls& calls);

signals:
    /// It is about to be shown; what is in it may still be set.
    void opening();
    void opened();
    void closed();

protected:
    /// Shows the window where it was, or else at its place by the main window. Does nothing while it is open.
    void open();

    /// Whether a key closes the window. Such keys work here even if they are shortcuts of the main window.
    virtual bool isClosingKey(const QKeyEvent& key) const;

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void saveFrame(const Frame& frame);

    const CompanionKind& m_kind;
    QWidget& m_mainWindow;
    Stores& m_stores;
    WindowFrameMemory& m_memory;
    FrameKeeper m_keeper;
};

} // namespace starbloom
