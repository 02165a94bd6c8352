// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QToolBar>

namespace starbloom {

/// A tool bar whose contents reach its ends and keep a given distance from each other, whatever the style would choose.
/// Points. GUI thread.
class ToolRow : public QToolBar {
    Q_OBJECT

public:
    /// The most with which all items fit above the smallest stage.
    static constexpr int spacing = 3;

    using QToolBar::QToolBar;

protected:
    bool event(QEvent* event) override;

private:
    void keepDistances();
};

} // namespace starbloom
