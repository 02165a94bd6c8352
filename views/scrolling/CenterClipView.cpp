// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/scrolling/CenterClipView.h"

#include "views/scrolling/ClipArithmetic.h"

namespace starbloom {

CenterClipView::CenterClipView(QWidget* parent)
    : ClipView(parent) {}

QPointF CenterClipView::constrained(const QPointF& proposed) const {
    return constrainCentred(proposed, documentSize(), openingSize());
}

QPointF CenterClipView::originAfterChange() const {
    return originAround(viewPoint(), documentSize(), openingSize());
}

} // namespace starbloom
