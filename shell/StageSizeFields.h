// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"

#include <QObject>
#include <QSize>
#include <QString>

class QLineEdit;

namespace starbloom {

/// Whether a text is a whole number without sign, blank or leading zero. "0" is one when allowed.
bool isInteger(const QString& text, bool zeroToo);

/// The two fields that show the stage's size in points and take another one, at every key.
///
/// What is no size, or below the least, turns red and changes nothing. There is no upper limit to what is valid, but
/// what is asked for ends at largestSide: a slip of the finger would take all memory. The window may answer a size with
/// another one; the fields then show what it has. The fields and the calls must outlive this. GUI thread.
class StageSizeFields final : public QObject {
    Q_OBJECT

public:
    static constexpr int largestSide = 8192;

    StageSizeFields(QLineEdit& width, QLineEdit& height, DelayedCalls& calls);

    bool validateWidth() const;
    bool validateHeight() const;

    /// The stage has another size. A field that is being typed in follows when the window has come to rest.
    void showSize(const QSize& stage);

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// Both fields hold a valid size, and the user has just changed one of them.
    void sizeTyped(const QSize& stage);

private:
    void controlTextDidChange(QLineEdit& field);
    void write();

    QLineEdit& m_width;
    QLineEdit& m_height;
    DelayedCalls& m_calls;
    QSize m_stage;  ///< Shown last.
    QSize m_wanted; ///< Typed last.
    PendingCall m_pendingWrite;
};

} // namespace starbloom
