// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class QWidget;

namespace starbloom {

/// What prints, and asks the user how. A test puts its own in place. GUI thread.
class PrintSystem {
public:
    using Finished = std::function<void()>;

    virtual ~PrintSystem() = default;

    /// Shows the print panel on the window, and prints one page with nothing on it if the user wants so. Returns at
    /// once and calls finished when all is done, or returns false where nothing can be printed.
    [[nodiscard]] virtual bool printPlain(QWidget& window, Finished finished) = 0;

    /// Lets the user choose the paper for what is printed later; otherwise the same.
    [[nodiscard]] virtual bool setUpPage(QWidget& window, Finished finished) = 0;
};

/// How the module that prints hands out its system, which belongs to the caller then. Its symbol is starbloomPrinting.
using PrintSystemEntry = PrintSystem* (*)();

} // namespace starbloom
