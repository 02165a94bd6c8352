// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"

#include <QObject>
#include <QSize>

#include <optional>

namespace starbloom {

class CenterClipView;
class StageView;

/// Decides how large the stage is in the room that its window has for it.
///
/// The stage follows the room. Only a size that was asked for and is more than the window has got is kept, and the
/// stage scrolls in its window, until there is room for all of it or another size is asked for. In full screen the
/// stage fills the screen whatever was asked for.
///
/// Makes the stage the clip view's document, and is the view's child. The stage and the calls must outlive it. GUI
/// thread.
class StageRoom final : public QObject {
    Q_OBJECT

public:
    StageRoom(CenterClipView& clipView, StageView& stage, DelayedCalls& calls);

    /// A size was asked for, and the window is about to be given what it takes.
    void ask(const QSize& stage);

    /// The window has answered with the size that it has now; another answer may come soon.
    void fit();

    void setFullScreen(bool full);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QSize stageFor(const QSize& room);

    CenterClipView& m_clipView;
    StageView& m_stage;
    DelayedCalls& m_calls;
    std::optional<QSize> m_asked; ///< While the window has not granted it.
    bool m_fullScreen = false;
    bool m_answerMayCome = false;
    PendingCall m_lastAnswer;
};

} // namespace starbloom
