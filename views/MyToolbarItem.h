// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAction>
#include <QColor>

namespace starbloom {

/// An item of a toolbar that remembers a colour, black at first, and draws nothing of it. GUI thread.
class MyToolbarItem : public QAction {
    Q_OBJECT

public:
    explicit MyToolbarItem(QObject* parent = nullptr);

    QColor color() const { return m_color; }

    void changeColor(const QColor& color) { m_color = color; }

private:
    QColor m_color = Qt::black;
};

} // namespace starbloom
