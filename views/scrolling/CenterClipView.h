// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/scrolling/ClipView.h"

namespace starbloom {

/// Keeps a small document in the middle, and of a large one the same point, whatever becomes of the view's size.
/// Paints nothing of its own. GUI thread.
class CenterClipView final : public ClipView {
    Q_OBJECT

public:
    explicit CenterClipView(QWidget* parent = nullptr);

protected:
    QPointF constrained(const QPointF& proposed) const override;
    QPointF originAfterChange() const override;
};

} // namespace starbloom
