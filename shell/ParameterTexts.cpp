// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ParameterTexts.h"

#include "views/Texts.h"

#include <string>

namespace starbloom {

QString textFor(const ParameterRow& row, const char* kind) {
    return textOf(std::string(row.name) + kind);
}

const char* groupOf(Parameter parameter) {
    if (parameter < Parameter::ExplodeLife) {
        return "settingsGroupRocket";
    }
    if (parameter < Parameter::SparkleBirth) {
        return "settingsGroupBurst";
    }
    return parameter < Parameter::AnimateSpeed ? "settingsGroupSparkle" : "settingsGroupAnimation";
}

} // namespace starbloom
