// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/ParameterTable.h"
#include "shell/guide/GuideScenes.h"

#include <QWidget>

namespace starbloom {

class GuidePictures;
class GuideStage;

/// What the guide says of one slider: its name, what it does, and a picture of either end, if there is something to be
/// seen. Refers to the pictures, which must outlive it. Used on the GUI thread.
class GuideEntry final : public QWidget {
    Q_OBJECT

public:
    GuideEntry(const ParameterRow& row, GuidePictures& pictures, QWidget* parent = nullptr);

signals:
    /// The user wants to see the slider itself.
    void sliderChosen(const ParameterRow& row);

private:
    QLayout* makeHeading();
    QWidget* makeLink();
    QWidget* makePictures(const GuideScene& scene, GuidePictures& pictures);
    GuideStage* makeStage(const GuideScene& scene, SliderEnd end, GuidePictures& pictures);

    const ParameterRow& m_row;
    QString m_name; ///< With the group: titles alone are not unique.
};

} // namespace starbloom
