// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TemporaryFolder.h"
#include "views/Texts.h"

#include <gtest/gtest.h>

// Each program says which class its application is of.
#include STARBLOOM_APPLICATION_HEADER

#include <fstream>

// The main program of all tests with widgets: no window on a real screen unless asked for, no file in the user's
// folders.
int main(int argc, char** argv) {
    const starbloom::TemporaryFolder folder;
    for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(variable, folder.path().c_str());
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        // The screen that this platform has otherwise is too small for the main window.
        const auto screen = folder / "screen.json";
        std::ofstream(screen) << R"({"screens": [{"name": "test", "x": 0, "y": 0, "width": 1920, "height": 1080,
                                  "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";
        qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + screen.string()).c_str());
    }
    ::testing::InitGoogleTest(&argc, argv);
    const STARBLOOM_APPLICATION application(argc, argv);
    starbloom::loadTexts(QLocale(QLocale::English));
    return RUN_ALL_TESTS();
}
