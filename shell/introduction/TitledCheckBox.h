// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCheckBox>

namespace starbloom {

/// A check box whose title has a colour of its own. Where the window is too dark or too light for it, the box lies on a
/// plate that the title can be read on. GUI thread.
class TitledCheckBox : public QCheckBox {
    Q_OBJECT

public:
    using QCheckBox::QCheckBox;

    void setTitleColor(const QColor& color);

    QColor titleColor() const { return m_titleColor; }

    QSize sizeHint() const override;

    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool needsPlate() const;

    QColor m_titleColor;
};

} // namespace starbloom
