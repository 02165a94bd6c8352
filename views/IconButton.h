// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolButton>

namespace starbloom {

/// A square button of the toolbar that shows its action's icon, with the focus ring of our other controls. GUI thread.
class IconButton : public QToolButton {
    Q_OBJECT

public:
    explicit IconButton(QAction* action, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace starbloom
