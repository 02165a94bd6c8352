// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPushButton>

namespace starbloom {

/// A button that looks like a link. Its text is shown letter by letter, and never shortened. Used on the GUI thread.
class LinkButton : public QPushButton {
    Q_OBJECT

public:
    /// Room for the focus ring on either side of the text. Points.
    static constexpr int border = 5;

    explicit LinkButton(QWidget* parent = nullptr);

    void setPlainText(const QString& text);

    QSize sizeHint() const override;

    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
};

} // namespace starbloom
