// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/WindowFrames.h"

#include <QRect>

#include <vector>

class QWidget;

namespace starbloom {

// Frames, which count upwards from the bottom left of the primary screen, and the desktop's rectangles, which count
// downwards from its top left. A window's frame is its client rectangle. GUI thread.

/// All screens in the desktop's order.
std::vector<Screen> desktopScreens();

Frame frameOf(const QRect& rect);
QRect rectOf(const Frame& frame);

/// Where a window that lies freely on the desktop may be remembered: full screen, maximised and minimised windows are
/// where the desktop has put them.
bool liesFreely(const QWidget& window);

} // namespace starbloom
