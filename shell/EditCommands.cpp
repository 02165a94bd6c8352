// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/EditCommands.h"

#include "shell/EditedText.h"
#include "shell/Menus.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFocusEvent>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTextBoundaryFinder>

namespace starbloom {

namespace {

QString clipboardText() {
    return QApplication::clipboard()->text();
}

bool clipboardHasText() {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    return data != nullptr && data->hasText();
}

/// Each word with one large letter, its first.
QString capitalized(const QString& text) {
    QString result;
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, text);
    for (qsizetype start = 0, end = 0; (end = words.toNextBoundary()) >= 0; start = end) {
        const qsizetype first = start + (text.at(start).isHighSurrogate() ? 2 : 1);
        result +=
            QLocale().toUpper(text.sliced(start, first - start)) + QLocale().toLower(text.sliced(first, end - first));
    }
    return result;
}

/// Whether a command makes sense for a text.
bool applies(Command command, const EditedText& text, bool canPaste) {
    using enum Command;
    switch (command) {
    case EditUndo:
        return text.isWritable() && text.canUndo();
    case EditRedo:
        return text.isWritable() && text.canRedo();
    case EditCopy:
        return !text.selection().isEmpty();
    case EditPaste:
    case EditPastematch:
        return text.isWritable() && canPaste;
    case EditDelete:
        return text.isWritable() && text.hasSelection();
    case EditSelectall:
        return !text.isEmpty();
    default: // Cutting and the transformations need to know what they take away.
        return text.isWritable() && !text.selection().isEmpty();
    }
}

void apply(Command command, EditedText& text) {
    using enum Command;
    switch (command) {
    case EditUndo:
        return text.undo();
    case EditRedo:
        return text.redo();
    case EditCut:
        text.copy();
        return text.insert({});
    case EditCopy:
        return text.copy();
    case EditPaste:
        return text.paste();
    case EditPastematch:
        return text.insert(clipboardText());
    case EditDelete:
        return text.insert({});
    case EditSelectall:
        return text.selectAll();
    case EditTransupper:
        return text.replaceSelection(QLocale().toUpper(text.selection()));
    case EditTranslower:
        return text.replaceSelection(QLocale().toLower(text.selection()));
    case EditTranscapital:
        return text.replaceSelection(capitalized(text.selection()));
    default:
        return;
    }
}

/// Whether a widget borrows the focus for choosing a command, and gives it back.
bool isMenu(const QWidget* widget) {
    return qobject_cast<const QMenuBar*>(widget) != nullptr || qobject_cast<const QMenu*>(widget) != nullptr;
}

} // namespace

EditCommands::EditCommands(Menus& menus)
    : m_menus(menus) {
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* focused) { follow(focused); });
    connect(&m_menus, &Menus::showing, this, [this] { validate(Clipboard::Ask); });
    connect(&m_menus, &Menus::hidden, this, [this] { validate(Clipboard::Assume); });
    for (const CommandRow& each : commandTable()) {
        if (each.availability == Availability::WithText) {
            connect(&m_menus.action(each.command), &QAction::triggered, this,
                    [this, command = each.command] { perform(command); });
        }
    }
}

void EditCommands::follow(QWidget* focused) {
    if (!isMenu(focused) && !isMenu(QApplication::activePopupWidget())) {
        if (m_field != nullptr) {
            m_field->removeEventFilter(this);
        }
        m_field = focused;
        if (m_field != nullptr) {
            m_field->installEventFilter(this);
        }
        validate(Clipboard::Assume);
    }
}

bool EditCommands::eventFilter(QObject* watched, QEvent* event) {
    // A line that loses the focus to the menu bar drops its selection, and with it what the edit menu is opened for. To
    // a popup it only lends the focus.
    if (event->type() == QEvent::FocusOut && static_cast<QFocusEvent*>(event)->reason() == Qt::MenuBarFocusReason) {
        QFocusEvent lent(QEvent::FocusOut, Qt::PopupFocusReason);
        watched->event(&lent);
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void EditCommands::validate(Clipboard clipboard) {
    const auto text = editedTextIn(m_field);
    const bool canPaste = text != nullptr && (clipboard == Clipboard::Assume || clipboardHasText());
    for (const CommandRow& each : commandTable()) {
        if (each.availability == Availability::WithText) {
            m_menus.action(each.command).setEnabled(text != nullptr && applies(each.command, *text, canPaste));
        }
    }
}

void EditCommands::perform(Command command) {
    if (const auto text = editedTextIn(m_field)) {
        apply(command, *text);
    }
}

} // namespace starbloom
