// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/Commands.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace starbloom {

class Menus;

/// The commands of the edit menu. They act on the text field that has the focus, be it a line or a document, and are
/// enabled as far as they make sense there.
///
/// The keys that a field knows itself reach the field and never come here. The menus must outlive it. GUI thread.
class EditCommands final : public QObject {
    Q_OBJECT

public:
    explicit EditCommands(Menus& menus);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// The clipboard belongs to another program, which may be slow to answer. So it is asked only when a menu is about
    /// to show what can be pasted; at all other times there is taken to be something in it.
    enum class Clipboard { Ask, Assume };

    void follow(QWidget* focused);
    void validate(Clipboard clipboard);
    void perform(Command command);

    Menus& m_menus;
    QPointer<QWidget> m_field; ///< That has the focus, or had it before the menu bar took it. Nothing if it is no text.
};

} // namespace starbloom
