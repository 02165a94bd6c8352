// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointF>
#include <QSizeF>

namespace starbloom {

/// Where a document lies behind the opening that a scroll view shows of it. All in points, from the document's bottom
/// left corner, y upwards; an origin is where the opening's bottom left corner lies. Pure functions.

/// To the nearest whole number, halves away from zero, in single precision.
double roundedToWhole(double value);

/// The origin nearest to the proposed one that shows nothing beyond the document. Where the opening is wider or higher
/// than the document, that is in its middle.
QPointF constrainCentred(const QPointF& proposed, const QSizeF& document, const QSizeF& opening);

/// The same, but with a y that is left alone where the opening is higher than the document.
QPointF constrainSideways(const QPointF& proposed, const QSizeF& document, const QSizeF& opening);

/// The middle of the opening as a part of the document's size. Not finite for a document that has none.
QPointF viewPointOf(const QPointF& origin, const QSizeF& document, const QSizeF& opening);

/// The origin that has this part of the document in the middle, or a document in the middle that is the smaller. Not
/// constrained.
QPointF originAround(const QPointF& viewPoint, const QSizeF& document, const QSizeF& opening);

/// The origin, moved so that a document that is lower than the opening has its top edge at the opening's.
QPointF originAtTop(const QPointF& origin, const QSizeF& document, const QSizeF& opening);

} // namespace starbloom
