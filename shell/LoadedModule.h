// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <QFunctionPointer>

#include <mutex>

namespace starbloom {

/// A part of the program in a module of its own, so that its libraries take no time of a launch. It is loaded when it
/// is first asked for, and never unloaded.
///
/// The module lies beside the program, or where it was installed to. One that is missing may be there the next time.
/// Any thread.
class LoadedModule {
public:
    /// The module's file without its suffix, and the symbol of its door. Both must outlive this.
    LoadedModule(const char* name, const char* symbol)
        : m_name(name)
        , m_symbol(symbol) {}

    /// Does nothing when the module is there already.
    Result<void> load();

    /// Once it is loaded.
    template <typename Entry>
    Entry door() const {
        return reinterpret_cast<Entry>(m_door);
    }

private:
    const char* m_name;
    const char* m_symbol;
    std::mutex m_mutex;
    QFunctionPointer m_door = nullptr;
};

} // namespace starbloom
