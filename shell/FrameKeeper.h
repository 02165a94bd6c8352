// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "persistence/files/WindowFrames.h"

#include <QObject>
#include <QRect>

#include <functional>

class QWidget;

namespace starbloom {

/// Has a window's frame written when the user has moved or resized it: when it has come to rest, and at the latest when
/// it closes. Windows whose place is the desktop's are left alone, see liesFreely().
///
/// The window and the calls must outlive it. Lives on the GUI thread.
class FrameKeeper final : public QObject {
    Q_OBJECT

public:
    using Save = std::function<void(const Frame& frame)>;

    FrameKeeper(QWidget& window, DelayedCalls& calls, Save save);

    /// From now on changes are the user's. The present place need not be written.
    void follow();

    /// Has the present frame written, now or by the event loop, where a store that fails is dealt with.
    void save();
    void saveSoon();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void saveIfMoved();

    QWidget& m_window;
    DelayedCalls& m_calls;
    Save m_save;
    QRect m_known; ///< What need not be written: where the window was put, or last written.
    PendingCall m_pendingSave;
};

} // namespace starbloom
