// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QSizeF>

class QColor;
class QString;

namespace starbloom {

// The round badge with a page's number. Lengths are in points. GUI thread.

/// The side of a badge, which is a square before its corners are rounded.
constexpr int badgeSide = 32;

/// The badge's face: a text in white, in the middle of a square of the colour. At a scale of 1 it has 32 x 32 pixels;
/// screens with more pixels to the point get as many more.
QImage stringImage7(const QString& text, const QColor& color, double scale = 1.0);

/// The image, cut to a rectangle with round corners.
QImage roundCorners7(const QImage& image, const QSizeF& radii);

} // namespace starbloom
