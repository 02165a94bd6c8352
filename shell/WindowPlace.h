// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "persistence/files/WindowFrames.h"
#include "persistence/stores/Stores.h"
#include "shell/FrameKeeper.h"

class QWidget;

namespace starbloom {

/// Remembers where the main window was. The window, the stores, the memory and the calls must outlive it. Lives on the
/// GUI thread. May throw StoreFailure out of the event loop, see KeyValueStore.
class WindowPlace {
public:
    WindowPlace(QWidget& window, Stores& stores, WindowFrameMemory& memory, DelayedCalls& calls);

    /// Gives the window, which has its first size but is not on the screen yet, its place by the mirrors; the sidebar's
    /// place goes to the memory. With nothing saved the window is centred, and that place is to be written.
    void restore(bool storeExists);

    /// For a window that has appeared: from now on changes are the user's, and are written. So is a first place, which
    /// had to wait, as the disk takes as long for it as the first picture does.
    void follow();

private:
    void centre();
    void saveWindowFrame(const Frame& frame);

    QWidget& m_window;
    Stores& m_stores;
    WindowFrameMemory& m_memory;
    FrameKeeper m_keeper;
    bool m_saveIsDue = false;
};

} // namespace starbloom
