// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWidget;

namespace starbloom {

/// Shows name, version, purpose and licence of the program above its window, which can still be used; brings the box to
/// the front if it is open. Returns at once. GUI thread.
void showAboutBox(QWidget& window);

} // namespace starbloom
