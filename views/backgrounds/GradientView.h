// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/backgrounds/Gradation.h"

#include <QWidget>

#include <span>
#include <vector>

namespace starbloom {

/// What one painter paints.
struct Gradation {
    /// Stands for the view's own width or height, as it is when the picture is made.
    static constexpr double own = 0.0;

    double width;
    double height;
    double angle; ///< See placeInGradient().
    std::span<const ColorStop> stops;
};

/// A ground with a gradient. Children lie on it as on any widget.
///
/// The picture is made once, when the view is shown for the first time and its layout has given it a size, and stays as
/// it is when the view grows: what lies beyond it is not painted. A view that has no size at that time shows nothing.
/// Views that are never shown cost nothing. Used on the GUI thread.
class GradientView : public QWidget {
public:
    /// Appends the gradation's stops to those that the view has, makes the picture of all of them and shows it.
    void makeGradation();

    void refresh() { makeGradation(); }

    /// The stops' picture at the screen's scale, see there.
    QImage createGradientImage(const QSizeF& size, double angle) const;

    const std::vector<ColorStop>& colorArray() const { return m_colorArray; }

    /// What the picture covers, in points from the top left corner.
    QSizeF imageSize() const { return m_imageSize; }

protected:
    explicit GradientView(const Gradation& gradation, QWidget* parent);

    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Gradation m_gradation;
    std::vector<ColorStop> m_colorArray;
    QSizeF m_imageSize;
    QImage m_myImage; ///< Of a gradient along an axis, only a strip: the rest is the same.
    bool m_awake = false;
};

} // namespace starbloom
