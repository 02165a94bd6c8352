// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/ProgramStyle.h"

namespace starbloom {

/// The style for our own dark palette: Fusion, which draws outlines darker than what they lie on, so that in the dark
/// boxes and fields lose them, with outlines that can be seen. GUI thread.
class DarkStyle : public ProgramStyle {
    Q_OBJECT

public:
    DarkStyle();

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* answer) const override;
};

} // namespace starbloom
