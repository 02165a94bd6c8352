// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "export/Encoders.h"
#include "persistence/files/FilePanel.h"
#include "persistence/stores/Stores.h"
#include "shell/FileManager.h"
#include "shell/PrintSystem.h"
#include "views/StageView.h"

#include <cstdint>

namespace starbloom {

/// What the application has from outside: time, the desktop's answers, the show's seed. All that is referred to
/// outlives the application.
struct Surroundings {
    DelayedCalls& calls;
    FilePanel& filePanel;
    const DocumentsFolder& documents;
    FileManager& fileManager;
    Encoders& encoders;
    PrintSystem& printSystem;
    std::uint64_t seed;
    StageView::ClockSource clock = StageView::steadyClock; ///< The stage's.
};

} // namespace starbloom
