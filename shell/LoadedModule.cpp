// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/LoadedModule.h"

#include <QCoreApplication>
#include <QLibrary>

#include <string>

namespace starbloom {

namespace {

/// Where modules lie from the program's folder: in the build tree, and installed.
constexpr const char* places[] = {"/", "/../" STARBLOOM_LIBDIR "/starbloom/"};

} // namespace

Result<void> LoadedModule::load() {
    const std::scoped_lock lock(m_mutex);
    std::string reason;
    for (const char* place : places) {
        if (m_door != nullptr) {
            break;
        }
        QLibrary module(QCoreApplication::applicationDirPath() + QLatin1String(place) + QLatin1String(m_name) +
                        QStringLiteral(".so"));
        m_door = module.resolve(m_symbol);
        if (m_door == nullptr && reason.empty()) {
            reason = module.errorString().toStdString();
        }
    }
    if (m_door == nullptr) {
        return Error{reason};
    }
    return {};
}

} // namespace starbloom
