// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadedPrintSystem.h"

#include "base/Log.h"

#include <utility>

namespace starbloom {

bool LoadedPrintSystem::load() {
    if (m_system != nullptr) {
        return true;
    }
    if (const auto module = m_module.load(); !module) {
        log(LogLevel::Warning, "shell", "cannot load what prints: " + module.error().message);
        return false;
    }
    m_system.reset(m_module.door<PrintSystemEntry>()());
    return true;
}

bool LoadedPrintSystem::printPlain(QWidget& window, Finished finished) {
    return load() && m_system->printPlain(window, std::move(finished));
}

bool LoadedPrintSystem::setUpPage(QWidget& window, Finished finished) {
    return load() && m_system->setUpPage(window, std::move(finished));
}

} // namespace starbloom
