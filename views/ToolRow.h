// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolBar>

namespace starbloom {

/// A tool bar whose contents keep given distances, whatever the style would choose: from the window's edges, and from
/// each other. Points. GUI thread.
class ToolRow : public QToolBar {
    Q_OBJECT

public:
    /// In line with the stage's edges.
    static constexpr int margin = 5;

    /// The most with which all items fit above a stage of the default size.
    static constexpr int spacing = 4;

    using QToolBar::QToolBar;

protected:
    bool event(QEvent* event) override;
};

} // namespace starbloom
