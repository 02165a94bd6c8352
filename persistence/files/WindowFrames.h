// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/EmitterLayer.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace starbloom {

// Where windows go and what is kept of it. Pure arithmetic: no window, no clock, no file. All lengths are points; a
// frame's origin is its bottom left corner, counted from the bottom left of the desktop, upwards. What a frame is of
// each window (its client rectangle, without the title bar that the window system adds above) is the shell's to keep.

/// A window's place and size.
struct Frame {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;

    friend bool operator==(const Frame&, const Frame&) = default;
};

/// One screen: all of it, and what panels and docks leave of it.
struct Screen {
    Frame full;
    Frame visible;
};

/// The size of the last screen of the list (not of the main one): all of it, or its visible part. 0 x 0 without one.
Size getScreensize(std::span<const Screen> screens, bool full);

/// The frame that centres a window on the visible size of a screen. The halves are not rounded, and a window larger
/// than the screen sticks out equally on both sides.
Frame centredFrame(Size window, Size visibleScreen);

/// Where the settings sidebar and the emitter guide open while no place of them is known, beside the main window.
Frame builtInSidebarFrame(const Frame& mainWindow);
Frame builtInGuideFrame(const Frame& mainWindow);

/// The same frame counted from the top left of a desktop of this height downwards, or back again.
Frame flipped(const Frame& frame, double desktopHeight);

/// What to do with the windows at launch.
struct RestorePlan {
    enum class Main {
        Centre,        ///< Centre the main window.
        CentreAndSave, ///< Centre it and write its frame to the store.
        Apply,         ///< Give it the frame below.
    };

    Main main = Main::Centre;
    Frame mainFrame;                   ///< For Main::Apply, exactly as it was saved.
    std::optional<Frame> sidebarFrame; ///< When present, becomes the sidebar's remembered place.
};

/// Decides from the store's mirror (Width0, Height0, Left0, Top0, Width1, ...; missing elements count as no number) and
/// the two check boxes "always centre" (generalCheckbox01) and "restore the sidebar" (generalCheckbox05).
///
/// The sidebar's place is used only when the main window's is: centring ends the restore, and that is meant so. Text
/// that is no number reads as 0, and so does one beyond +-32,767 points, which no window system can place.
RestorePlan restoreFrames(bool storeExists, std::span<const std::string> windowArray, bool generalCheckbox01,
                          bool generalCheckbox05);

/// How much of a window's top edge must stay on a screen so that the window can be grabbed: the width of a few letters
/// by the height of a title bar.
inline constexpr double grabWidth = 64.0;
inline constexpr double grabHeight = 28.0;

/// The frame as it is, if any part of its top edge lies on a screen. Otherwise the frame moved, not resized, by as
/// little as brings a piece of grabWidth x grabHeight at its top onto the visible part of the nearest screen: a window
/// that was left on a screen that is gone would else be lost for good.
Frame reachable(const Frame& frame, std::span<const Screen> screens);

/// What the store keeps of frame number `index` (0 main window, 1 sidebar, 2 guide): keys and values in the order in
/// which they are written.
std::array<std::pair<std::string, std::string>, 4> frameRows(int index, const Frame& frame);

/// The places of the two secondary windows within one run, and whether they are open. Closing a window keeps its frame
/// here, so that it opens at the same place again.
struct WindowFrameMemory {
    Frame sidebar; ///< sLeft, sTop, sWidth, sHeight. A width or height of 0 means that no place is known.
    Frame guide;   ///< gLeft, gTop, gWidth, gHeight, likewise.
    bool isSidebarOpen = false;
    bool isGuideOpen = false;

    Frame sidebarFrame(const Frame& mainWindow) const;
    Frame guideFrame(const Frame& mainWindow) const;
};

} // namespace starbloom
