// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/scrolling/ClipView.h"

namespace starbloom {

/// Keeps a short document at the top and a narrow one in the middle, on the pale blue of panels. GUI thread.
class SideClipview final : public ClipView {
    Q_OBJECT

public:
    explicit SideClipview(QWidget* parent = nullptr);

protected:
    QPointF constrained(const QPointF& proposed) const override;
    QPointF originAfterChange() const override;
};

} // namespace starbloom
