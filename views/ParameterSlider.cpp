// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ParameterSlider.h"

#include "views/Texts.h"

#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <string>

namespace starbloom {

namespace {

/// Steps of a hundredth, a tenth or one position: each range of the table then has between 110 and 800 of them, more
/// than a slider on the screen has pixels for a hand to tell apart.
int stepsPerPosition(const ParameterRow& row) {
    const float range = row.maximum - row.minimum;
    return range <= 10.0F ? 100 : range <= 100.0F ? 10 : 1;
}

/// An arrow key moves ten steps: 11 to 80 presses from end to end.
constexpr int stepsPerArrowKey = 10;
constexpr int stepsPerPageKey = 50;

} // namespace

ParameterSlider::ParameterSlider(const ParameterRow& row, QWidget* parent)
    : QSlider(Qt::Horizontal, parent)
    , m_row(row)
    , m_stepsPerPosition(stepsPerPosition(row))
    , m_position(static_cast<float>(row.resetPosition)) {
    setObjectName(QString::fromUtf8(row.name.data(), static_cast<qsizetype>(row.name.size())));
    setFocusPolicy(Qt::StrongFocus);
    setRange(0, static_cast<int>(std::lround((row.maximum - row.minimum) * static_cast<float>(m_stepsPerPosition))));
    setSingleStep(stepsPerArrowKey);
    setPageStep(stepsPerPageKey);
    setValue(nearestStep(m_position));
    connect(this, &QSlider::valueChanged, this, &ParameterSlider::valueMoved);
}

void ParameterSlider::setPosition(float position) {
    {
        const QSignalBlocker silent(this);
        setValue(nearestStep(position));
    }
    m_position = position;
    emit positionChanged();
}

void ParameterSlider::resetByUser() {
    setPosition(static_cast<float>(m_row.resetPosition));
    emit moved();
}

QString ParameterSlider::text(const ParameterRow& row, float position) {
    const double arrowKey = row.unitsPerPosition * stepsPerArrowKey / stepsPerPosition(row);
    const int decimals = arrowKey >= 1.0 ? 0 : 1;
    const double scale = decimals == 0 ? 1.0 : 10.0;
    const double units = static_cast<double>(position) * row.unitsPerPosition + row.unitsAtZero;
    // Adding 0 turns a rounded -0 into 0.
    const double rounded = std::round(units * scale) / scale + 0.0;
    const QString number = QLocale().toString(rounded, 'f', decimals).replace(u'-', QChar(0x2212)); // A minus sign.
    return textOf(std::string(row.name) + "Unit").arg(number);
}

void ParameterSlider::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        resetByUser();
        event->accept();
    } else {
        QSlider::mouseDoubleClickEvent(event);
    }
}

void ParameterSlider::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete) {
        resetByUser();
        event->accept();
    } else {
        QSlider::keyPressEvent(event);
    }
}

void ParameterSlider::wheelEvent(QWheelEvent* event) {
    // A wheel that scrolls the panel must not change whatever slider comes to lie under the pointer.
    if (hasFocus()) {
        QSlider::wheelEvent(event);
    } else {
        event->ignore();
    }
}

void ParameterSlider::valueMoved(int step) {
    m_position =
        static_cast<float>(static_cast<double>(m_row.minimum) + static_cast<double>(step) / m_stepsPerPosition);
    emit positionChanged();
    emit moved();
}

int ParameterSlider::nearestStep(float position) const {
    // The comparison also takes care of a position that is not a number.
    const float inRange = position > m_row.minimum ? std::min(position, m_row.maximum) : m_row.minimum;
    return static_cast<int>(std::lround((inRange - m_row.minimum) * static_cast<float>(m_stepsPerPosition)));
}

} // namespace starbloom
