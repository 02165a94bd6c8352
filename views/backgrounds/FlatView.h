// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QWidget>

namespace starbloom {

/// A ground of one opaque colour, whatever size it has. Used on the GUI thread.
class FlatView : public QWidget {
protected:
    FlatView(const QColor& color, QWidget* parent);

    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
};

} // namespace starbloom
