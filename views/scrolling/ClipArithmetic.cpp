// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/scrolling/ClipArithmetic.h"

#include <cmath>

namespace starbloom {

namespace {

/// What is no number ends at a border, so that a document that had no size for a while is found again.
double clamped(double proposed, double document, double opening) {
    return roundedToWhole(std::fmax(std::fmin(proposed, document - opening), 0.0));
}

double constrained(double proposed, double document, double opening) {
    return opening > document ? roundedToWhole((document - opening) / 2.0) : clamped(proposed, document, opening);
}

double around(double viewPoint, double document, double opening) {
    return roundedToWhole(opening > document ? (document - opening) / 2.0 : viewPoint * document - opening / 2.0);
}

} // namespace

double roundedToWhole(double value) {
    return static_cast<double>(std::round(static_cast<float>(value)));
}

QPointF constrainCentred(const QPointF& proposed, const QSizeF& document, const QSizeF& opening) {
    return {constrained(proposed.x(), document.width(), opening.width()),
            constrained(proposed.y(), document.height(), opening.height())};
}

QPointF constrainSideways(const QPointF& proposed, const QSizeF& document, const QSizeF& opening) {
    const bool higher = opening.height() > document.height();
    return {constrained(proposed.x(), document.width(), opening.width()),
            higher ? proposed.y() : clamped(proposed.y(), document.height(), opening.height())};
}

QPointF viewPointOf(const QPointF& origin, const QSizeF& document, const QSizeF& opening) {
    return {(origin.x() + opening.width() * 0.5) / document.width(),
            (origin.y() + opening.height() * 0.5) / document.height()};
}

QPointF originAround(const QPointF& viewPoint, const QSizeF& document, const QSizeF& opening) {
    return {around(viewPoint.x(), document.width(), opening.width()),
            around(viewPoint.y(), document.height(), opening.height())};
}

QPointF originAtTop(const QPointF& origin, const QSizeF& document, const QSizeF& opening) {
    const double missing = opening.height() - document.height();
    return {origin.x(), missing > 0.0 ? -roundedToWhole(missing) : origin.y()};
}

} // namespace starbloom
