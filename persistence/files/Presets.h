// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "engine/panel/ParameterPanel.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace starbloom {

/// The preferences store, as Presets sees it.
class PresetStore {
public:
    virtual ~PresetStore() = default;

    /// The text at a position of the mirror of the store as it was last read; position 10 holds "Value10".
    virtual std::string preferenceAt(int position) const = 0;

    /// Writes one value to the store, not to the mirror.
    virtual void saveData1(std::string_view value, std::string_view key) = 0;

    /// Reads the store into the mirror and does nothing else.
    virtual void reloadOnlyDB1() = 0;
};

/// What happens around a preset. The first two must be set.
struct PresetCallbacks {
    std::function<void()> slidersMoved;                     ///< All sliders have new positions: apply them.
    std::function<void(bool enabled)> setSaveButtonEnabled; ///< The button of the sidebar that saves.
    std::function<void()> saved = [] {};                    ///< A delayed save has reached the store.
};

/// Keeps the fourteen slider positions as the user's preset, in "Value10" to "Value23" in the panel's order.
///
/// Owns at most one delayed save, which dies with it. What it refers to must outlive it. One thread.
class Presets {
public:
    /// How long the save button stays disabled before the positions are written, which keeps the user from saving
    /// twice in a row.
    static constexpr std::chrono::milliseconds saveDelay{2000};

    Presets(ParameterPanel& panel, PresetStore& store, DelayedCalls& calls, PresetCallbacks callbacks);

    /// Moves all sliders to the mirror's positions and then applies them once. The file is not read. Text that is no
    /// number is position 0; positions beyond a slider's ends are left to the slider.
    void loadSettings6();

    /// Disables the save button and saves after the delay.
    void saveSettings6a();

    /// Writes the present positions, brings the mirror up to date and enables the button. The button is enabled even
    /// when the store throws, and the exception goes on to the caller.
    void saveSettings6b();

private:
    ParameterPanel& m_panel;
    PresetStore& m_store;
    DelayedCalls& m_calls;
    PresetCallbacks m_callbacks;
    PendingCall m_pendingSave; // The last member: the call uses all others.
};

} // namespace starbloom
