// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/FrameKeeper.h"

#include "persistence/stores/KeyValueStore.h"
#include "shell/DesktopFrames.h"

#include <QEvent>
#include <QWidget>

#include <utility>

namespace starbloom {

namespace {

/// A drag reports a new place for every few pixels; only where it ends is worth a visit to the disk.
constexpr std::chrono::milliseconds restTime{400};

} // namespace

FrameKeeper::FrameKeeper(QWidget& window, DelayedCalls& calls, Save save)
    : m_window(window)
    , m_calls(calls)
    , m_save(std::move(save)) {}

void FrameKeeper::follow() {
    m_known = m_window.geometry();
    m_window.installEventFilter(this);
}

void FrameKeeper::save() {
    m_known = m_window.geometry();
    m_save(frameOf(m_known));
}

void FrameKeeper::saveSoon() {
    m_pendingSave = PendingCall(m_calls, std::chrono::milliseconds(0), [this] { save(); });
}

void FrameKeeper::saveIfMoved() {
    if (liesFreely(m_window) && m_window.geometry() != m_known) {
        save();
    }
}

bool FrameKeeper::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) {
        m_pendingSave = PendingCall(m_calls, restTime, [this] { saveIfMoved(); });
    } else if (event->type() == QEvent::Close) {
        m_pendingSave.cancel();
        try {
            saveIfMoved();
        } catch (const StoreFailure&) {
            // The window closes all the same. The failure comes again from the event loop, where it is told.
            m_pendingSave = PendingCall(m_calls, std::chrono::milliseconds(0), [this] { saveIfMoved(); });
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace starbloom
