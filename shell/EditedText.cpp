// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/EditedText.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextEdit>

namespace starbloom {

namespace {

class LineText final : public EditedText {
public:
    explicit LineText(QLineEdit& line)
        : m_line(line) {}

    bool isWritable() const override { return !m_line.isReadOnly(); }

    bool isEmpty() const override { return m_line.text().isEmpty(); }

    bool canUndo() const override { return m_line.isUndoAvailable(); }

    bool canRedo() const override { return m_line.isRedoAvailable(); }

    QString selection() const override {
        return m_line.echoMode() == QLineEdit::Normal ? m_line.selectedText() : QString();
    }

    bool hasSelection() const override { return m_line.hasSelectedText(); }

    void undo() override { m_line.undo(); }

    void redo() override { m_line.redo(); }

    void copy() override { m_line.copy(); }

    void paste() override { m_line.paste(); }

    void selectAll() override { m_line.selectAll(); }

    void insert(const QString& text) override { m_line.insert(text); }

    void replaceSelection(const QString& text) override {
        const int start = m_line.selectionStart();
        m_line.insert(text);
        m_line.setSelection(start, m_line.cursorPosition() - start);
    }

private:
    QLineEdit& m_line;
};

/// QTextEdit and QPlainTextEdit have these functions in common, and no base that has them.
template <typename Edit>
class DocumentText final : public EditedText {
public:
    explicit DocumentText(Edit& edit)
        : m_edit(edit) {}

    bool isWritable() const override { return !m_edit.isReadOnly(); }

    bool isEmpty() const override { return m_edit.document()->isEmpty(); }

    bool canUndo() const override { return m_edit.document()->isUndoAvailable(); }

    bool canRedo() const override { return m_edit.document()->isRedoAvailable(); }

    QString selection() const override { return m_edit.textCursor().selectedText(); }

    bool hasSelection() const override { return m_edit.textCursor().hasSelection(); }

    void undo() override { m_edit.undo(); }

    void redo() override { m_edit.redo(); }

    void copy() override { m_edit.copy(); }

    void paste() override { m_edit.paste(); }

    void selectAll() override { m_edit.selectAll(); }

    void insert(const QString& text) override { m_edit.insertPlainText(text); }

    void replaceSelection(const QString& text) override {
        QTextCursor cursor = m_edit.textCursor();
        const int start = cursor.selectionStart();
        cursor.insertText(text);
        const int end = cursor.position();
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        m_edit.setTextCursor(cursor);
    }

private:
    Edit& m_edit;
};

QLineEdit* lineIn(QWidget* widget) {
    if (const auto* combo = qobject_cast<QComboBox*>(widget)) {
        return combo->lineEdit();
    }
    if (qobject_cast<QAbstractSpinBox*>(widget) != nullptr) {
        return widget->findChild<QLineEdit*>();
    }
    return qobject_cast<QLineEdit*>(widget);
}

} // namespace

std::unique_ptr<EditedText> editedTextIn(QWidget* widget) {
    if (QLineEdit* line = lineIn(widget)) {
        return std::make_unique<LineText>(*line);
    }
    if (auto* edit = qobject_cast<QTextEdit*>(widget)) {
        return std::make_unique<DocumentText<QTextEdit>>(*edit);
    }
    if (auto* edit = qobject_cast<QPlainTextEdit*>(widget)) {
        return std::make_unique<DocumentText<QPlainTextEdit>>(*edit);
    }
    return nullptr;
}

} // namespace starbloom
