// SPDX-License-Identifier: GPL-3.0-or-later

// Writes the manual page and the completions of starbloom-render into a folder, for the build.
//
//     starbloom-render-documents FOLDER

#include "base/PendingFile.h"
#include "cli/documents/Documents.h"

#include <cstdio>
#include <filesystem>
#include <span>
#include <string>
#include <utility>

int main(int argc, char** argv) {
    using namespace starbloom;
    if (argc != 2) {
        std::fputs("usage: starbloom-render-documents FOLDER\n", stderr);
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    for (const auto& [name, text] :
         {std::pair("starbloom-render.1", manualPage(STARBLOOM_VERSION)),
          std::pair("starbloom-render.bash", bashCompletion()), std::pair("_starbloom-render", zshCompletion()),
          std::pair("starbloom-render.fish", fishCompletion())}) {
        if (auto written = writeFile(folder / name, std::as_bytes(std::span(text))); !written) {
            std::fprintf(stderr, "starbloom-render-documents: %s\n", written.error().message.c_str());
            return 1;
        }
    }
    return 0;
}
