// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

namespace starbloom {

/// A margin around one child in which the child's focus ring is painted: for a child that paints nothing, or all of
/// itself. The margin is that of the layout. GUI thread.
class FocusFrame final : public QWidget {
    Q_OBJECT

public:
    explicit FocusFrame(QWidget* parent = nullptr);

protected:
    void childEvent(QChildEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace starbloom
