// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QComboBox>
#include <QLineEdit>

namespace starbloom {

/// A pop-up whose present item, when too long for it, is shortened in the middle. Its list is as wide as it needs.
class ElidedPopup : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A text field that shows a text too long for it shortened in the middle, and the whole one, to be scrolled and
/// copied, while it has the focus.
class ElidedField : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace starbloom
