// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SliderPanel.h"

#include "shell/ButtonText.h"
#include "shell/ParameterTexts.h"
#include "ui_SliderPanel.h"
#include "views/ParameterSlider.h"
#include "views/Texts.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QStyle>

#include <algorithm>
#include <string_view>

namespace starbloom {

namespace {

enum Column { NameColumn, SliderColumn, ValueColumn, ColumnCount };

/// The least at which the steps of a slider can still be aimed at. Points.
constexpr int sliderWidth = 72;

/// Between the last row of a group and the next group's heading, beside the usual spacing. Points.
constexpr int groupGap = 6;

QString toolTipOf(const ParameterRow& row) {
    return qtTrId("settingsSliderToolTip")
        .arg(textFor(row, "Effect"), ParameterSlider::text(row, static_cast<float>(row.resetPosition)));
}

} // namespace

SliderPanel::SliderPanel(QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::SliderPanel>()) {
    m_ui->setupUi(this);
    connect(m_ui->resetButton, &QPushButton::clicked, this, &SliderPanel::resetRequested);
    connect(m_ui->loadButton6, &QPushButton::clicked, this, &SliderPanel::loadRequested);
    connect(m_ui->saveButton6, &QPushButton::clicked, this, &SliderPanel::saveRequested);
    m_ui->grid->setColumnMinimumWidth(SliderColumn, sliderWidth);
    const char* group = "";
    for (const ParameterRow& parameter : parameterTable) {
        if (std::string_view(groupOf(parameter.parameter)) != group) {
            group = groupOf(parameter.parameter);
            addGroup(textOf(group));
        }
        addRow(parameter, textOf(group));
    }
    m_ui->grid->setRowStretch(m_ui->grid->rowCount(), 1);
}

SliderPanel::~SliderPanel() = default;

void SliderPanel::addGroup(const QString& title) {
    auto* heading = new QLabel(title);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    const int line = m_ui->grid->rowCount();
    heading->setContentsMargins(0, line > 1 ? groupGap : 0, 0, 0);
    m_ui->grid->addWidget(heading, line, NameColumn, 1, ColumnCount);
}

void SliderPanel::addRow(const ParameterRow& parameter, const QString& group) {
    auto* slider = new ParameterSlider(parameter);
    auto* name = new QLabel(textFor(parameter, "Title"));
    auto* value = new QLabel;
    const QString toolTip = toolTipOf(parameter);
    for (QWidget* each : {static_cast<QWidget*>(name), static_cast<QWidget*>(slider), static_cast<QWidget*>(value)}) {
        each->setToolTip(toolTip);
    }
    slider->setAccessibleName(qtTrId("settingsSliderName").arg(group, name->text()));
    slider->setAccessibleDescription(textFor(parameter, "Effect"));
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

    const int line = m_ui->grid->rowCount();
    m_ui->grid->addWidget(name, line, NameColumn);
    m_ui->grid->addWidget(slider, line, SliderColumn);
    m_ui->grid->addWidget(value, line, ValueColumn);
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
    m_ui->resetButton->setEnabled(enabled);
}

void SliderPanel::setSaveEnabled(bool enabled) {
    m_noSaveOnItsWay = enabled;
    m_ui->saveButton6->setEnabled(m_noSaveOnItsWay && m_presetsEnabled);
}

void SliderPanel::setPresetsEnabled(bool enabled) {
    m_presetsEnabled = enabled;
    m_ui->loadButton6->setEnabled(enabled);
    m_ui->saveButton6->setEnabled(m_noSaveOnItsWay && m_presetsEnabled);
}

void SliderPanel::colourButtons() {
    setButtonText(orange, *m_ui->loadButton6);
    setButtonText(skyBlue, *m_ui->saveButton6);
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
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_ui->scroll);
    m_ui->scroll->setMinimumWidth(m_ui->rows->minimumSizeHint().width() + bar);
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
