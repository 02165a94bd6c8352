// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace starbloom {

class Menus;
class Toolbar;

/// Decides whether pictures and movies can be exported, and enables the commands for it. What it refers to must
/// outlive it. GUI thread.
class ExportGate {
public:
    struct Conditions {
        std::function<bool()> folderIsKnown;
        std::function<bool()> nameIsValid;
    };

    ExportGate(Menus& menus, Toolbar& toolbar, Conditions conditions);

    /// Exporting takes a folder that exists, an animation that is switched on, and a valid name.
    void validateImageExport();

private:
    bool isPossible() const;

    Menus& m_menus;
    Toolbar& m_toolbar;
    Conditions m_conditions;
};

} // namespace starbloom
