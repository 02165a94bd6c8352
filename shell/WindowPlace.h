// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "persistence/files/WindowFrames.h"
#include "persistence/stores/Stores.h"

#include <QObject>
#include <QRect>

#include <vector>

class QWidget;

namespace starbloom {

/// All screens in the desktop's order, in points from the bottom left of the primary one, upward.
std::vector<Screen> desktopScreens();

/// Remembers where the main window was.
///
/// A window's frame is its client rectangle; the store counts from the bottom left. A move or a change of size is
/// written when it has come to rest, and at the latest when the window closes. Full screen, maximised and minimised
/// windows are not written: their place is the desktop's.
///
/// The window, the stores and the calls must outlive it. Lives on the GUI thread. May throw StoreFailure out of the
/// event loop, see KeyValueStore.
class WindowPlace final : public QObject {
    Q_OBJECT

public:
    WindowPlace(QWidget& window, Stores& stores, DelayedCalls& calls);

    /// Gives the window, which has its first size but is not on the screen yet, its place by the mirrors. With nothing
    /// saved it is centred, and that place is written.
    void restore(bool storeExists);

    /// From now on changes are the user's, and are written.
    void follow();

    /// Writes the present frame.
    void saveWindowFrame();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void centre();
    void apply(const Frame& frame);
    void saveIfMoved();

    QWidget& m_window;
    Stores& m_stores;
    DelayedCalls& m_calls;
    QRect m_known; ///< What need not be written: where the window was put, or last written.
    PendingCall m_pendingSave;
};

} // namespace starbloom
