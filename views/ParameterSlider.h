// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/ParameterTable.h"

#include <QSlider>
#include <QString>

namespace starbloom {

/// The slider of one parameter.
///
/// Positions are fractions of what the table calls a position, while a QSlider counts whole steps; so the slider keeps
/// the position it was given, to the bit, and shows the nearest step, until the user moves it. Positions beyond the
/// ends of the range are kept, too. A double-click or the Delete key puts it back to its reset position.
///
/// It carries the parameter's name as object name; its words are its owner's. Refers to a row of parameterTable. Used
/// on the GUI thread.
class ParameterSlider : public QSlider {
    Q_OBJECT

public:
    explicit ParameterSlider(const ParameterRow& row, QWidget* parent = nullptr);

    const ParameterRow& parameterRow() const { return m_row; }

    float position() const { return m_position; }

    /// Takes a position without reporting a move by the user.
    void setPosition(float position);

    /// The reset position, reported as a move by the user.
    void resetByUser();

    /// A position in the parameter's own unit, such as "2.0 s".
    static QString text(const ParameterRow& row, float position);

signals:
    /// The user has moved the slider.
    void moved();

    /// The position is another one, whoever has set it.
    void positionChanged();

protected:
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void valueMoved(int step);
    int nearestStep(float position) const;

    const ParameterRow& m_row;
    int m_stepsPerPosition;
    float m_position;
};

} // namespace starbloom
