// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SliderPanel.h"

#include "views/ParameterSlider.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace starbloom {

namespace {

enum Column { NameColumn, SliderColumn, ValueColumn, ColumnCount };

/// Long enough to aim at a value, short enough to leave the window to the stage. Points.
constexpr int sliderWidth = 150;

QString toolTipOf(const ParameterRow& row) {
    auto effect = QString::fromUtf8(row.effect.data(), static_cast<qsizetype>(row.effect.size()));
    effect.front() = effect.front().toUpper();
    return SliderPanel::tr("%1.\nDouble-click to put it back to %2.")
        .arg(effect, ParameterSlider::text(row, static_cast<float>(row.resetPosition)));
}

/// Kept free at the right by all but the scroll bar, which lies at the very edge.
int rightMargin(const QWidget& widget) {
    return widget.style()->pixelMetric(QStyle::PM_LayoutRightMargin, nullptr, &widget);
}

/// The group that a parameter is the first of; nothing for all others.
QString groupBeginningAt(Parameter parameter) {
    switch (parameter) {
    case Parameter::RocketHeight:
        return SliderPanel::tr("Rockets");
    case Parameter::ExplodeLife:
        return SliderPanel::tr("Bursts");
    case Parameter::SparkleBirth:
        return SliderPanel::tr("Sparkles");
    case Parameter::AnimateSpeed:
        return SliderPanel::tr("Time");
    default:
        return {};
    }
}

} // namespace

SliderPanel::SliderPanel(QWidget* parent)
    : QWidget(parent)
    , m_scroll(new QScrollArea)
    , m_reset(new QPushButton(tr("&Reset all")))
    , m_load(new QPushButton(tr("&Load")))
    , m_save(new QPushButton(tr("S&ave"))) {
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setWidget(makeRows());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_scroll, 1);
    layout->addLayout(makeButtons());
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    fitWidth();
}

SliderPanel::~SliderPanel() = default;

QLayout* SliderPanel::makeButtons() {
    m_reset->setObjectName(QStringLiteral("resetButton"));
    m_reset->setToolTip(tr("Puts all fourteen sliders back to where they were at first."));
    connect(m_reset, &QPushButton::clicked, this, &SliderPanel::resetRequested);
    m_load->setObjectName(QStringLiteral("loadButton6"));
    m_load->setToolTip(tr("Puts all sliders back to the positions that were saved last."));
    connect(m_load, &QPushButton::clicked, this, &SliderPanel::loadRequested);
    m_save->setObjectName(QStringLiteral("saveButton6"));
    m_save->setToolTip(tr("Keeps the positions of all sliders; the next start begins with them."));
    connect(m_save, &QPushButton::clicked, this, &SliderPanel::saveRequested);

    auto* line = new QHBoxLayout;
    line->setContentsMargins(0, 0, rightMargin(*this), 0);
    line->addWidget(m_reset);
    line->addStretch();
    line->addWidget(m_load);
    line->addWidget(m_save);
    return line;
}

QWidget* SliderPanel::makeRows() {
    auto* rows = new QWidget;
    auto* grid = new QGridLayout(rows);
    grid->setContentsMargins(0, 0, rightMargin(*this), 0);
    grid->setColumnStretch(SliderColumn, 1);
    grid->setColumnMinimumWidth(SliderColumn, sliderWidth);
    for (const ParameterRow& parameter : parameterTable) {
        if (const QString group = groupBeginningAt(parameter.parameter); !group.isEmpty()) {
            addGroup(*grid, group);
        }
        addRow(*grid, parameter);
    }
    grid->setRowStretch(grid->rowCount(), 1);
    return rows;
}

void SliderPanel::addGroup(QGridLayout& grid, const QString& title) {
    auto* heading = new QLabel(title);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    const int line = grid.rowCount();
    if (line > 1) {
        heading->setContentsMargins(0, grid.verticalSpacing(), 0, 0);
    }
    grid.addWidget(heading, line, NameColumn, 1, ColumnCount);
}

void SliderPanel::addRow(QGridLayout& grid, const ParameterRow& parameter) {
    auto* slider = new ParameterSlider(parameter);
    auto* name = new QLabel(slider->accessibleName());
    auto* value = new QLabel;
    const QString toolTip = toolTipOf(parameter);
    for (QWidget* each : {static_cast<QWidget*>(name), static_cast<QWidget*>(slider), static_cast<QWidget*>(value)}) {
        each->setToolTip(toolTip);
    }
    name->setBuddy(slider);
    name->installEventFilter(this);
    value->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    value->setObjectName(slider->objectName() + QStringLiteral("Value"));

    const auto showValue = [slider, value] {
        value->setText(ParameterSlider::text(slider->parameterRow(), slider->position()));
    };
    showValue();
    connect(slider, &ParameterSlider::positionChanged, value, showValue);
    connect(slider, &ParameterSlider::moved, this, &SliderPanel::moved);

    const int line = grid.rowCount();
    grid.addWidget(name, line, NameColumn);
    grid.addWidget(slider, line, SliderColumn);
    grid.addWidget(value, line, ValueColumn);
    m_rows[static_cast<std::size_t>(parameter.parameter)] = {name, slider, value};
}

float SliderPanel::position(Parameter parameter) const {
    return rowOf(parameter).slider->position();
}

void SliderPanel::setPosition(Parameter parameter, float position) {
    rowOf(parameter).slider->setPosition(position);
}

void SliderPanel::setEnabled(Parameter parameter, bool enabled) {
    const Row& row = rowOf(parameter);
    row.name->setEnabled(enabled);
    row.slider->setEnabled(enabled);
    row.value->setEnabled(enabled);
}

void SliderPanel::setResetEnabled(bool enabled) {
    m_reset->setEnabled(enabled);
}

void SliderPanel::setSaveEnabled(bool enabled) {
    m_save->setEnabled(enabled);
}

void SliderPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        fitWidth();
    }
}

void SliderPanel::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    fitWidth();
}

void SliderPanel::fitWidth() {
    int widest = 0;
    QLabel sample;
    sample.setFont(font());
    for (const ParameterRow& parameter : parameterTable) {
        for (const float end : {parameter.minimum, parameter.maximum}) {
            sample.setText(ParameterSlider::text(parameter, end));
            widest = std::max(widest, sample.sizeHint().width());
        }
    }
    for (const Row& row : m_rows) {
        row.value->setMinimumWidth(widest);
    }
    // With room for the scroll bar at all times: when it comes, sliders get shorter, and no text moves out of sight.
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_scroll);
    m_scroll->setFixedWidth(m_scroll->widget()->minimumSizeHint().width() + bar);
}

bool SliderPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick) {
        const auto clicked = std::ranges::find(m_rows, watched, &Row::name);
        // Filters see the clicks on disabled widgets, too.
        if (clicked != m_rows.end() && clicked->name->isEnabled() &&
            static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            clicked->slider->resetByUser();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace starbloom
