// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/LoadedModule.h"
#include "shell/PrintSystem.h"

#include <memory>

namespace starbloom {

/// The print system in a module of its own, which is loaded when it is first needed. Where the module is missing
/// nothing can be printed, and the log says why. Needs a QApplication that outlives it. GUI thread.
class LoadedPrintSystem final : public PrintSystem {
public:
    bool printPlain(QWidget& window, Finished finished) override;
    bool setUpPage(QWidget& window, Finished finished) override;

private:
    bool load();

    LoadedModule m_module{"starbloom-printing", "starbloomPrinting"};
    std::unique_ptr<PrintSystem> m_system;
};

} // namespace starbloom
