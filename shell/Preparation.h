// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <thread>

namespace starbloom {

class Stores;

// What the launch has done on another processor, while the main thread does what only it can do. Nothing here is
// needed: what is not ready, or fails, is done again where it is needed, and told of there.

/// Does it on a thread of its own, on another processor if there is one; gives none where the system has no thread
/// left, and does nothing then. The task may not throw.
std::jthread startAside(std::function<void()> task);

/// Does what needs no toolkit, while that connects to the window system: the fonts' configuration, the stores (unless
/// there are none), the image of the sparks. Any thread; the stores are nobody else's meanwhile.
void prepare(Stores* stores);

/// Has the toolkit look through all fonts, as it does for the first text otherwise, while the main thread makes what
/// has none. Begins once there is an application, which must outlive the thread.
std::jthread startLookingThroughFonts();

} // namespace starbloom
