// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/ParameterPanel.h"

#include <QWidget>

#include <array>
#include <memory>

class QGridLayout;
class QLabel;

namespace Ui {
class SliderPanel;
}

namespace starbloom {

class ParameterSlider;

/// The fourteen sliders in four groups, each with its name and its value, and below them the buttons that load and save
/// the preset and reset the sliders.
///
/// Scrolls when it is given less height than it needs; its least width depends on the font alone, so that a value that
/// grows a digit moves nothing. Owns its widgets. Lives on the GUI thread.
///
/// It begins as fourteen numbers: the widgets are not made before they are wanted, as most launches do not show them.
class SliderPanel : public QWidget, public ParameterPanel {
    Q_OBJECT

public:
    explicit SliderPanel(QWidget* parent = nullptr);
    ~SliderPanel() override;

    /// Makes the widgets, as the panel is by then. To be called before it is shown; does nothing the second time.
    void fill();

    float position(Parameter parameter) const override;
    void setPosition(Parameter parameter, float position) override;
    void setEnabled(Parameter parameter, bool enabled) override;
    void setResetEnabled(bool enabled) override;
    using QWidget::setEnabled;

    /// The save button rests while a save is on its way.
    void setSaveEnabled(bool enabled);

    /// Both buttons of the preset, which rest while a movie is being made.
    void setPresetsEnabled(bool enabled);

    /// Gives the buttons of the preset their coloured titles.
    void colourButtons();

signals:
    /// The user has moved a slider, or put one back.
    void moved();

    /// The reset button was pressed. Moving the sliders is left to whoever listens.
    void resetRequested();

    /// The buttons of the preset were pressed.
    void loadRequested();
    void saveRequested();

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Row {
        QLabel* name = nullptr;
        ParameterSlider* slider = nullptr;
        QLabel* value = nullptr;
    };

    void makeRows();
    QGridLayout& addGroup(const QString& title);
    void addRow(const ParameterRow& parameter, const QString& group, QGridLayout& grid);
    void fitWidth();
    void showStates();

    bool isFilled() const { return m_ui != nullptr; }

    const Row& rowOf(Parameter parameter) const { return m_rows[static_cast<std::size_t>(parameter)]; }

    std::unique_ptr<Ui::SliderPanel> m_ui; ///< Nothing until the panel is filled.
    std::array<Row, parameterCount> m_rows;
    PositionPanel m_positions; ///< Until there are sliders to keep them.
    std::array<bool, parameterCount> m_enabled;
    bool m_resetEnabled = true;
    bool m_coloured = false;
    bool m_noSaveOnItsWay = true;
    bool m_presetsEnabled = true;
};

} // namespace starbloom
