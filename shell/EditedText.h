// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <memory>

class QWidget;

namespace starbloom {

/// A text that is being edited, whichever widget it stands in. Refers to the widget, and lives for one command. GUI
/// thread.
class EditedText {
public:
    virtual ~EditedText() = default;

    virtual bool isWritable() const = 0;
    virtual bool isEmpty() const = 0;
    virtual bool canUndo() const = 0;
    virtual bool canRedo() const = 0;

    /// What is selected and may be known: a password may not.
    virtual QString selection() const = 0;
    virtual bool hasSelection() const = 0;

    virtual void undo() = 0;
    virtual void redo() = 0;
    virtual void copy() = 0;
    virtual void paste() = 0;
    virtual void selectAll() = 0;

    /// Puts a text in the place of the selection, in the style of what surrounds it.
    virtual void insert(const QString& text) = 0;

    /// Does the same and leaves the new text selected.
    virtual void replaceSelection(const QString& text) = 0;
};

/// The text in a line edit, in the field of a spin box or combo box, or in a text edit; nothing for other widgets.
std::unique_ptr<EditedText> editedTextIn(QWidget* widget);

} // namespace starbloom
