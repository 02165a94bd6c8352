// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/StageSizeFields.h"

#include "shell/Commands.h"
#include "shell/ValidField.h"
#include "views/StageView.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>

#include <algorithm>

namespace starbloom {

namespace {

/// Longer than a window needs to answer a size with another one, shorter than a person needs to wonder.
constexpr std::chrono::milliseconds restTime{300};

/// The number in a text that is one, as far as a stage may reach.
int sideOf(const QString& text) {
    bool fits = false;
    const int number = text.toInt(&fits);
    return fits ? std::min(number, StageSizeFields::largestSide) : StageSizeFields::largestSide;
}

bool isSide(const QString& text, int least) {
    return isInteger(text, false) && sideOf(text) >= least;
}

} // namespace

bool isInteger(const QString& text, bool zeroToo) {
    static const QRegularExpression number(QStringLiteral("\\A[1-9][0-9]*\\z"));
    return number.match(text).hasMatch() || (zeroToo && text == QStringLiteral("0"));
}

StageSizeFields::StageSizeFields(QLineEdit& width, QLineEdit& height, DelayedCalls& calls)
    : m_width(width)
    , m_height(height)
    , m_calls(calls) {
    for (QLineEdit* field : {&m_width, &m_height}) {
        connect(field, &QLineEdit::textEdited, this, [this, field] { controlTextDidChange(*field); });
        field->installEventFilter(this);
    }
}

bool StageSizeFields::eventFilter(QObject* watched, QEvent* event) {
    // The key of the export command is the end of the line to a text field, as in a terminal; End is as near.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->keyCombination() == row(Command::FileExport).shortcut) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

bool StageSizeFields::validateWidth() const {
    return isSide(m_width.text(), StageView::minimumStage.width());
}

bool StageSizeFields::validateHeight() const {
    return isSide(m_height.text(), StageView::minimumStage.height());
}

void StageSizeFields::controlTextDidChange(QLineEdit& field) {
    showAsValid(field, &field == &m_width ? validateWidth() : validateHeight());
    if (validateWidth() && validateHeight()) {
        m_wanted = {sideOf(m_width.text()), sideOf(m_height.text())};
        emit sizeTyped(m_wanted);
    }
}

void StageSizeFields::showSize(const QSize& stage) {
    m_stage = stage;
    const bool typing = m_width.hasFocus() || m_height.hasFocus();
    if (!typing) {
        m_pendingWrite.cancel();
        write();
    } else if (stage != m_wanted) {
        // Perhaps a late answer to the key before the last one.
        m_pendingWrite = PendingCall(m_calls, restTime, [this] { write(); });
    } else {
        m_pendingWrite.cancel();
    }
}

void StageSizeFields::write() {
    for (const auto& [field, side] : {std::pair(&m_width, m_stage.width()), std::pair(&m_height, m_stage.height())}) {
        if (const QString text = QString::number(side); field->text() != text) {
            field->setText(text);
        }
    }
    // A stage may be smaller than what can be typed: the desktop may have the last word.
    showAsValid(m_width, true);
    showAsValid(m_height, true);
    m_wanted = {}; // What comes now is another change than the one that was asked for.
}

} // namespace starbloom
