// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/BackgroundWell.h"

#include "base/Log.h"
#include "persistence/files/BackgroundColor.h"
#include "views/ColorWell.h"

#include <utility>

namespace starbloom {

namespace {

/// A pointer dragged across the colour dialog picks a colour for every few pixels.
constexpr std::chrono::milliseconds restTime{400};

} // namespace

BackgroundWell::BackgroundWell(ColorWell& well, std::filesystem::path file, DelayedCalls& calls, Show showOnStage)
    : m_well(well)
    , m_file(std::move(file))
    , m_calls(calls)
    , m_showOnStage(std::move(showOnStage)) {
    connect(&m_well, &ColorWell::colorPicked, this, [this](const QColor& picked) {
        toolBackcolorT1Changed({picked.redF(), picked.greenF(), picked.blueF(), 1.0F});
    });
}

void BackgroundWell::showStoredColor() {
    if (const auto color = loadBackgroundColor(m_file)) {
        m_well.setColor(QColor::fromRgbF(color->red, color->green, color->blue));
    }
}

void BackgroundWell::toolBackcolorT1Changed(const Color& color) {
    m_showOnStage(color);
    m_unsaved = color;
    m_pendingSave = PendingCall(m_calls, restTime, [this] { saveNow(); });
}

void BackgroundWell::saveNow() {
    m_pendingSave.cancel();
    if (const auto color = std::exchange(m_unsaved, std::nullopt)) {
        if (const auto saved = saveBackgroundColor(m_file, *color); !saved) {
            log(LogLevel::Warning, "persistence", saved.error().message);
        }
    }
}

} // namespace starbloom
