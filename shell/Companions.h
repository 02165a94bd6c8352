// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/MenuSnapshot.h"
#include "persistence/files/WindowFrames.h"
#include "persistence/stores/Stores.h"
#include "shell/Surroundings.h"

#include <memory>

namespace starbloom {

class GuideWindow;
class IntroductionWindow;
class MainWindow;
class SettingsSidebar;

/// The two windows that explain the program beside the main window: the introduction and the emitter guide. Each is
/// made when it is first to be shown. Keeps their commands disabled while they are open.
///
/// What it refers to must outlive it. GUI thread.
class Companions {
public:
    struct Owners {
        MainWindow& window;
        SettingsSidebar& sidebar;
        Stores& stores;
        WindowFrameMemory& frames;
        MenuSnapshot& menus;
    };

    Companions(Owners owners, const Surroundings& surroundings);
    ~Companions();

    Companions(const Companions&) = delete;
    Companions& operator=(const Companions&) = delete;

    /// A step of the launch: either the introduction comes up, once the main window is there, or its command is there
    /// to be given.
    void beginWithIntroduction(bool wanted);

    /// The main window is on the screen.
    void mainWindowAppeared();

    void quicktourApp();
    void showEmitterGuide();

    /// The main window closes.
    void close();

private:
    IntroductionWindow& introduction();
    void setTourEnabled(bool enabled);

    Owners m_owners;
    Surroundings m_surroundings;
    bool m_introductionIsDue = false;
    std::unique_ptr<GuideWindow> m_guide;
    std::unique_ptr<IntroductionWindow> m_introduction;
};

} // namespace starbloom
