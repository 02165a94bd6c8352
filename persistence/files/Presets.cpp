// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/Presets.h"

#include "persistence/stores/NumberText.h"

#include <array>
#include <utility>

namespace starbloom {

namespace {

constexpr int firstPosition = 10;

/// Enables the button at the end of the scope, however that is reached.
class ButtonGuard {
public:
    explicit ButtonGuard(const std::function<void(bool)>& setEnabled)
        : m_setEnabled(setEnabled) {}

    ~ButtonGuard() { m_setEnabled(true); }

    ButtonGuard(const ButtonGuard&) = delete;
    ButtonGuard& operator=(const ButtonGuard&) = delete;

private:
    const std::function<void(bool)>& m_setEnabled;
};

} // namespace

Presets::Presets(ParameterPanel& panel, PresetStore& store, DelayedCalls& calls, PresetCallbacks callbacks)
    : m_panel(panel)
    , m_store(store)
    , m_calls(calls)
    , m_callbacks(std::move(callbacks)) {}

void Presets::loadSettings6() {
    int position = firstPosition;
    for (const auto& row : parameterTable) {
        m_panel.setPosition(row.parameter, floatValue(m_store.preferenceAt(position++)));
    }
    m_callbacks.slidersMoved();
}

void Presets::saveSettings6a() {
    m_callbacks.setSaveButtonEnabled(false);
    m_pendingSave = PendingCall(m_calls, saveDelay, [this] { saveSettings6b(); });
}

void Presets::saveSettings6b() {
    m_pendingSave.cancel();
    const ButtonGuard enableAtTheEnd(m_callbacks.setSaveButtonEnabled);
    // All positions belong to one moment, whatever the writing brings about.
    std::array<float, parameterCount> positions{};
    for (std::size_t i = 0; i < parameterCount; ++i) {
        positions[i] = m_panel.position(parameterTable[i].parameter);
    }
    for (std::size_t i = 0; i < parameterCount; ++i) {
        m_store.saveData1(textOfFloat(positions[i]), "Value" + std::to_string(firstPosition + i));
    }
    m_store.reloadOnlyDB1();
    m_callbacks.saved();
}

} // namespace starbloom
