// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SliderPanel.h"

#include "shell/ButtonText.h"
#include "shell/ParameterTexts.h"
#include "ui_SliderPanel.h"
#include "views/ControlLook.h"
#include "views/PanelBox.h"
#include "views/ParameterSlider.h"
#include "views/Texts.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QStyle>

#include <algorithm>
#include <string_view>

namespace starbloom {

namespace {

enum Column { NameColumn, SliderColumn, ValueColumn };

/// The least at which the steps of a slider can still be aimed at. Points.
constexpr int sliderWidth = 72;

QString toolTipOf(const ParameterRow& row) {
    return qtTrId("settingsSliderToolTip")
        .arg(textFor(row, "Effect"), ParameterSlider::text(row, static_cast<float>(row.resetPosition)));
}

} // namespace

SliderPanel::SliderPanel(QWidget* parent)
    : QWidget(parent) {
    m_enabled.fill(true);
}

SliderPanel::~SliderPanel() = default;

void SliderPanel::fill() {
    if (isFilled()) {
        return;
    }
    m_ui = std::make_unique<Ui::SliderPanel>();
    m_ui->setupUi(this);
    connect(m_ui->resetButton, &QPushButton::clicked, this, &SliderPanel::resetRequested);
    connect(m_ui->loadButton6, &QPushButton::clicked, this, &SliderPanel::loadRequested);
    connect(m_ui->saveButton6, &QPushButton::clicked, this, &SliderPanel::saveRequested);
    makeRows();
    showStates();
    if (m_coloured) {
        colourButtons();
    }
}

void SliderPanel::makeRows() {
    const char* group = "";
    QGridLayout* grid = nullptr;
    for (const ParameterRow& parameter : parameterTable) {
        if (std::string_view(groupOf(parameter.parameter)) != group) {
            group = groupOf(parameter.parameter);
            grid = &addGroup(textOf(group));
        }
        addRow(parameter, textOf(group), *grid);
        rowOf(parameter.parameter).slider->setPosition(m_positions.position(parameter.parameter));
    }
    m_ui->groups->addStretch(1);
}

QGridLayout& SliderPanel::addGroup(const QString& title) {
    auto* box = new PanelBox;
    box->setTitle(title);
    auto& grid = *new QGridLayout(box);
    grid.setContentsMargins(usualSpacing, usualSpacing, usualSpacing, usualSpacing);
    grid.setSpacing(usualSpacing);
    grid.setColumnMinimumWidth(SliderColumn, sliderWidth);
    grid.setColumnStretch(SliderColumn, 1);
    m_ui->groups->addWidget(box);
    return grid;
}

void SliderPanel::addRow(const ParameterRow& parameter, const QString& group, QGridLayout& grid) {
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

    const int line = grid.rowCount();
    grid.addWidget(name, line, NameColumn);
    grid.addWidget(slider, line, SliderColumn);
    grid.addWidget(value, line, ValueColumn);
    m_rows[static_cast<std::size_t>(parameter.parameter)] = {name, slider, value};
}

float SliderPanel::position(Parameter parameter) const {
    return isFilled() ? rowOf(parameter).slider->position() : m_positions.position(parameter);
}

void SliderPanel::setPosition(Parameter parameter, float position) {
    if (isFilled()) {
        rowOf(parameter).slider->setPosition(position);
    } else {
        m_positions.setPosition(parameter, position);
    }
}

void SliderPanel::setEnabled(Parameter parameter, bool enabled) {
    m_enabled[static_cast<std::size_t>(parameter)] = enabled;
    showStates();
}

void SliderPanel::setResetEnabled(bool enabled) {
    m_resetEnabled = enabled;
    showStates();
}

void SliderPanel::setSaveEnabled(bool enabled) {
    m_noSaveOnItsWay = enabled;
    showStates();
}

void SliderPanel::setPresetsEnabled(bool enabled) {
    m_presetsEnabled = enabled;
    showStates();
}

void SliderPanel::colourButtons() {
    m_coloured = true;
    if (isFilled()) {
        setButtonText(orange, *m_ui->loadButton6);
        setButtonText(skyBlue, *m_ui->saveButton6);
    }
}

void SliderPanel::showStates() {
    if (!isFilled()) {
        return;
    }
    for (const ParameterRow& parameter : parameterTable) {
        const Row& row = rowOf(parameter.parameter);
        const bool enabled = m_enabled[static_cast<std::size_t>(parameter.parameter)];
        for (QWidget* each :
             {static_cast<QWidget*>(row.name), static_cast<QWidget*>(row.slider), static_cast<QWidget*>(row.value)}) {
            each->setEnabled(enabled);
        }
    }
    m_ui->resetButton->setEnabled(m_resetEnabled);
    m_ui->loadButton6->setEnabled(m_presetsEnabled);
    m_ui->saveButton6->setEnabled(m_noSaveOnItsWay && m_presetsEnabled);
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
    if (!isFilled()) {
        return;
    }
    // Each group has a grid; columns of equal widths make one of all.
    int widest = 0;
    int widestName = 0;
    QLabel sample;
    sample.setFont(font());
    for (const ParameterRow& parameter : parameterTable) {
        for (const float end : {parameter.minimum, parameter.maximum}) {
            sample.setText(ParameterSlider::text(parameter, end));
            widest = std::max(widest, sample.sizeHint().width());
        }
    }
    for (const Row& row : m_rows) {
        widestName = std::max(widestName, row.name->sizeHint().width());
    }
    for (const Row& row : m_rows) {
        row.name->setMinimumWidth(widestName);
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
