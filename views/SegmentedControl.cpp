// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/SegmentedControl.h"

#include "views/ControlLook.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>
#include <QSignalBlocker>

namespace starbloom {

namespace {

constexpr int symbolSize = 18;

/// Between the control's edge and its segments: the frame with its margin, and a gap.
constexpr int border = 4;

/// A radio button that looks like a part of its control.
class Segment : public QRadioButton {
public:
    explicit Segment(QWidget* parent)
        : QRadioButton(parent) {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        setAttribute(Qt::WA_Hover);
        // The Tab key passes over the segments that are not selected.
        setFocusPolicy(Qt::ClickFocus);
        connect(this, &QAbstractButton::toggled, this,
                [this](bool selected) { setFocusPolicy(selected ? Qt::StrongFocus : Qt::ClickFocus); });
    }

    QSize sizeHint() const override { return {symbolSize + 2 * border, symbolSize}; }

    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const ControlState state = controlState(*this, isDown());
        const QRectF ground = QRectF(rect()).adjusted(1.0, 1.0, -1.0, -1.0);
        if (isChecked()) {
            paintChosen(painter, ground, palette(), state);
        } else if (state.hovered || state.pressed) {
            paintHovered(painter, ground, palette(), state);
        }
        const bool onHighlight = isChecked() && state.enabled;
        icon().paint(&painter, rect().adjusted(border, 0, -border, 0), Qt::AlignCenter,
                     onHighlight     ? QIcon::Selected
                     : state.enabled ? QIcon::Normal
                                     : QIcon::Disabled);
    }

    void focusInEvent(QFocusEvent* event) override {
        QRadioButton::focusInEvent(event);
        parentWidget()->update();
    }

    void focusOutEvent(QFocusEvent* event) override {
        QRadioButton::focusOutEvent(event);
        parentWidget()->update();
    }
};

} // namespace

SegmentedControl::SegmentedControl(QWidget* parent)
    : QWidget(parent)
    , m_group(new QButtonGroup(this)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(border, border, border, border);
    row->setSpacing(0);
    connect(m_group, &QButtonGroup::idToggled, this, [this](int segment, bool selected) {
        if (selected) {
            emit segmentSelected(segment);
        }
    });
}

void SegmentedControl::addSegment(const QIcon& icon, const QString& text) {
    auto* segment = new Segment(this);
    segment->setIcon(icon);
    segment->setToolTip(text);
    segment->setAccessibleName(text);
    const int number = static_cast<int>(m_group->buttons().size());
    m_group->addButton(segment, number);
    layout()->addWidget(segment);
    if (number == 0) {
        setSelectedSegment(0);
    }
}

int SegmentedControl::selectedSegment() const {
    return m_group->checkedId();
}

void SegmentedControl::setSelectedSegment(int segment) {
    QAbstractButton* button = m_group->button(segment);
    Q_ASSERT(button != nullptr);
    const QSignalBlocker silent(m_group);
    button->setChecked(true);
}

QSize SegmentedControl::sizeHint() const {
    return QWidget::sizeHint().expandedTo(QSize(98, controlHeight));
}

void SegmentedControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    ControlState state = controlState(*this);
    state.hovered = false; // Only the segment under the pointer shows it.
    paintControl(painter, rect(), palette(), state);
}

} // namespace starbloom
