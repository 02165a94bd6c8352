// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace starbloom {

/// While one of these lives, keys and the mouse do nothing in the application. Windows can be closed, and keep their
/// focus, which a modal window that is never shown would lose for good. For moments only. GUI thread.
class InputPause final : public QObject {
    Q_OBJECT

public:
    InputPause();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

} // namespace starbloom
