// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/WindowFrames.h"

#include "persistence/stores/NumberText.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace starbloom {

namespace {

// The built-in places, below the main window's toolbar; users' eyes are used to them.
constexpr Size sidebarSize{296.0, 559.0};
constexpr Size guideSize{450.0, 542.0};
constexpr double belowToolbar = 100.0;
constexpr double sidebarDrop = 540.0;
constexpr double guideDrop = 523.0;

/// Window systems count coordinates in 16 bits.
constexpr double largestCoordinate = 32767.0;

double storedNumber(std::span<const std::string> values, std::size_t position) {
    const double number = position < values.size() ? static_cast<double>(floatValue(values[position])) : 0.0;
    return std::abs(number) <= largestCoordinate ? number : 0.0;
}

Frame storedFrame(std::span<const std::string> values, std::size_t index) {
    const auto first = index * 4;
    return {.x = storedNumber(values, first + 2),
            .y = storedNumber(values, first + 3),
            .width = storedNumber(values, first),
            .height = storedNumber(values, first + 1)};
}

bool isKnown(const Frame& frame) {
    return frame.width != 0.0 && frame.height != 0.0;
}

bool topEdgeLiesOn(const Frame& frame, const Frame& screen) {
    const double top = frame.y + frame.height;
    return top > screen.y && top <= screen.y + screen.height && frame.x < screen.x + screen.width &&
           frame.x + frame.width > screen.x;
}

/// The value nearest to `value` between two ends; the upper one gives way when they cross on a tiny screen.
double nearest(double value, double low, double high) {
    return std::clamp(value, low, std::max(low, high));
}

Frame movedOnto(const Frame& frame, const Frame& screen) {
    const double wanted = std::min(grabWidth, frame.width);
    const double top = nearest(frame.y + frame.height, screen.y + grabHeight, screen.y + screen.height);
    return {.x = nearest(frame.x, screen.x + wanted - frame.width, screen.x + screen.width - wanted),
            .y = top - frame.height,
            .width = frame.width,
            .height = frame.height};
}

} // namespace

Size getScreensize(std::span<const Screen> screens, bool full) {
    if (screens.empty()) {
        return {};
    }
    const auto& frame = full ? screens.back().full : screens.back().visible;
    return {frame.width, frame.height};
}

Frame centredFrame(Size window, Size visibleScreen) {
    return {.x = (visibleScreen.width - window.width) / 2.0,
            .y = (visibleScreen.height - window.height) / 2.0,
            .width = window.width,
            .height = window.height};
}

Frame builtInSidebarFrame(const Frame& mainWindow) {
    return {.x = mainWindow.x + mainWindow.width - sidebarSize.width,
            .y = mainWindow.y + mainWindow.height - belowToolbar - sidebarDrop,
            .width = sidebarSize.width,
            .height = sidebarSize.height};
}

Frame builtInGuideFrame(const Frame& mainWindow) {
    return {.x = mainWindow.x,
            .y = mainWindow.y + mainWindow.height - belowToolbar - guideDrop,
            .width = guideSize.width,
            .height = guideSize.height};
}

Frame flipped(const Frame& frame, double desktopHeight) {
    return {.x = frame.x, .y = desktopHeight - frame.y - frame.height, .width = frame.width, .height = frame.height};
}

RestorePlan restoreFrames(bool storeExists, std::span<const std::string> windowArray, bool generalCheckbox01,
                          bool generalCheckbox05) {
    if (!storeExists || generalCheckbox01) {
        return {};
    }
    const auto saved = storedFrame(windowArray, 0);
    if (!(saved.width > 0.0) || !(saved.height > 0.0)) {
        return {.main = RestorePlan::Main::CentreAndSave, .mainFrame = {}, .sidebarFrame = {}};
    }
    RestorePlan plan{.main = RestorePlan::Main::Apply, .mainFrame = saved, .sidebarFrame = {}};
    if (generalCheckbox05) {
        plan.sidebarFrame = storedFrame(windowArray, 1);
    }
    return plan;
}

Frame reachable(const Frame& frame, std::span<const Screen> screens) {
    Frame best = frame;
    double shortest = std::numeric_limits<double>::infinity();
    for (const auto& screen : screens) {
        if (topEdgeLiesOn(frame, screen.full)) {
            return frame;
        }
        const auto moved = movedOnto(frame, screen.visible);
        const double distance = std::hypot(moved.x - frame.x, moved.y - frame.y);
        if (distance < shortest) {
            shortest = distance;
            best = moved;
        }
    }
    return best;
}

std::array<std::pair<std::string, std::string>, 4> frameRows(int index, const Frame& frame) {
    const auto number = std::to_string(index);
    const auto text = [](double value) { return textOfFloat(static_cast<float>(value)); };
    return {{{"Width" + number, text(frame.width)},
             {"Height" + number, text(frame.height)},
             {"Left" + number, text(frame.x)},
             {"Top" + number, text(frame.y)}}};
}

Frame WindowFrameMemory::sidebarFrame(const Frame& mainWindow) const {
    return isKnown(sidebar) ? sidebar : builtInSidebarFrame(mainWindow);
}

Frame WindowFrameMemory::guideFrame(const Frame& mainWindow) const {
    return isKnown(guide) ? guide : builtInGuideFrame(mainWindow);
}

} // namespace starbloom
