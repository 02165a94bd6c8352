// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/scrolling/SideClipview.h"

#include "views/backgrounds/BackgroundViews.h"
#include "views/scrolling/ClipArithmetic.h"

namespace starbloom {

SideClipview::SideClipview(QWidget* parent)
    : ClipView(parent) {
    setViewport(new BackgroundView3);
}

QPointF SideClipview::constrained(const QPointF& proposed) const {
    return constrainSideways(proposed, documentSize(), openingSize());
}

QPointF SideClipview::originAfterChange() const {
    return originAtTop(boundsOrigin(), documentSize(), openingSize());
}

} // namespace starbloom
