// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QString>
#include <QWidget>

class QButtonGroup;

namespace starbloom {

/// A row of segments of which exactly one is selected; at first it is the first.
///
/// The Tab key reaches the selected segment, the arrow keys move the selection. To assistive programs the segments are
/// radio buttons. Owns its segments. Used on the GUI thread.
class SegmentedControl : public QWidget {
    Q_OBJECT

public:
    explicit SegmentedControl(QWidget* parent = nullptr);

    /// Adds a segment at the end. The text is its tool tip and its accessible name.
    void addSegment(const QIcon& icon, const QString& text);

    /// The number of the selected segment, from 0; -1 while there is none.
    int selectedSegment() const;

    /// Selects an existing segment without reporting it as the user's choice.
    void setSelectedSegment(int segment);

    QSize sizeHint() const override;

    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    /// The user has selected another segment.
    void segmentSelected(int segment);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QButtonGroup* m_group;
};

} // namespace starbloom
