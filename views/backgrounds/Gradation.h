// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QSizeF>

#include <array>
#include <span>
#include <string_view>

namespace starbloom {

/// A colour at its place in a gradient, as it is written down: red, green and blue 0..255 and the alpha in percent as
/// whole numbers, the position 0..1 as a decimal number. Texts stay texts until a gradient is made of them; what
/// follows a number is ignored, and what holds none is 0.
struct ColorStop {
    std::string_view red;
    std::string_view green;
    std::string_view blue;
    std::string_view alpha;
    std::string_view position;
};

/// The same in numbers. The position has passed through single precision, as the colours have.
struct GradientStop {
    std::array<float, 4> color; ///< Red, green, blue, alpha, each 0..1, not premultiplied.
    double position;
};

GradientStop numbersOf(const ColorStop& stop);

/// Where a point lies along a gradient at an angle that fills a rectangle from corner to corner: 0 at the corner where
/// it begins, 1 at the one opposite. The angle is in degrees, counter-clockwise from the x axis; the point is counted
/// from the top left corner. So 0 runs from left to right, and 270 from top to bottom.
double placeInGradient(const QPointF& point, const QSizeF& size, double angle);

/// A picture of this size in points, filled with the gradient in sRGB. At scale 1 it has one pixel for each whole
/// point. A size below one pixel gives a null image.
///
/// Stops are taken in the order of their positions, those at one place in the order given: the same stops given twice
/// make the same picture.
QImage createGradientImage(std::span<const ColorStop> stops, const QSizeF& size, double angle, double scale = 1.0);

} // namespace starbloom
