// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/StageRoom.h"

#include "views/StageView.h"
#include "views/scrolling/CenterClipView.h"

#include <QEvent>

namespace starbloom {

namespace {

/// A window has the size that it is given at once; the desktop may take some of it back. Longer than desktops need for
/// that, shorter than a person who then drags the window's edge.
constexpr std::chrono::milliseconds answerTime{500};

bool holds(const QSize& room, const QSize& stage) {
    return stage.width() <= room.width() && stage.height() <= room.height();
}

} // namespace

StageRoom::StageRoom(CenterClipView& clipView, StageView& stage, DelayedCalls& calls)
    : QObject(&clipView)
    , m_clipView(clipView)
    , m_stage(stage)
    , m_calls(calls) {
    m_clipView.setDocumentView(&m_stage);
    m_clipView.installEventFilter(this);
}

void StageRoom::ask(const QSize& stage) {
    m_asked = stage;
    m_answerMayCome = true;
    m_lastAnswer = PendingCall(m_calls, answerTime, [this] {
        m_answerMayCome = false;
        fit();
    });
}

void StageRoom::setFullScreen(bool full) {
    m_fullScreen = full;
    fit();
}

void StageRoom::fit() {
    m_stage.resize(stageFor(m_clipView.maximumViewportSize()));
}

QSize StageRoom::stageFor(const QSize& room) {
    if (m_fullScreen || !m_asked) {
        return room;
    }
    if (!holds(room, *m_asked)) {
        return *m_asked;
    }
    if (!m_answerMayCome) {
        m_asked.reset();
    }
    return room;
}

bool StageRoom::eventFilter(QObject* watched, QEvent* event) {
    // Before the view itself sees its new size, so that it places a stage that fits already.
    if (watched == &m_clipView && event->type() == QEvent::Resize) {
        fit();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace starbloom
