// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/SavedShow.h"

#include "persistence/files/BackgroundColor.h"
#include "persistence/stores/KeyValueStore.h"
#include "persistence/stores/NumberText.h"

#include <algorithm>

namespace starbloom {

namespace {

/// Where the positions begin among the preferences.
constexpr std::size_t firstPosition = 10;

} // namespace

Result<void> showSaved(const EnvironmentLookup& environment, Options& options) {
    const auto home = AppFolder::dataHome(environment);
    if (!home) {
        return home.error();
    }
    const AppFolder folder(home.value());
    if (!fileExists(folder.filePath1())) {
        return Error{"--saved: the application has saved nothing yet; there is no " + folder.filePath1().string()};
    }
    const auto preferences = KeyValueStore(folder.filePath1(), preferencesDefinition()).readAll();
    if (!preferences || preferences->size() < firstPosition + parameterCount) {
        return Error{"--saved: " + folder.filePath1().string() + " cannot be read"};
    }
    for (std::size_t i = 0; i < parameterCount; ++i) {
        const ParameterRow& parameter = parameterTable[i];
        // As a slider takes it.
        const float position = floatValue((*preferences)[firstPosition + i]);
        options.positions.setPosition(parameter.parameter, std::clamp(position, parameter.minimum, parameter.maximum));
    }
    options.background = loadBackgroundColor(folder.filePath6()).value_or(options.background);
    return {};
}

} // namespace starbloom
