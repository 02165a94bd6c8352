// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/RendererChoice.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <system_error>

namespace starbloom {

RendererChoice rendererChoice(const QByteArray& value, bool* known) {
    const QByteArray word = value.trimmed().toLower();
    if (known != nullptr) {
        *known = word.isEmpty() || word == "auto" || word == "raster" || word == "opengl";
    }
    if (word == "raster") {
        return RendererChoice::Raster;
    }
    return word == "opengl" ? RendererChoice::OpenGl : RendererChoice::Automatic;
}

bool isSoftwareRenderer(std::string_view name) {
    constexpr std::array<std::string_view, 8> words{"llvmpipe", "softpipe", "swrast",      "swiftshader",
                                                    "lavapipe", "software", "gdi generic", "basic render"};
    std::string lower(name);
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    // A driver without a name is none to rely on.
    return name.empty() || std::ranges::any_of(words, [&lower](std::string_view word) {
               return lower.find(word) != std::string::npos;
           });
}

bool hasGraphicsDevice(const std::filesystem::path& devices) {
    std::error_code error;
    for (const char* device : {"nvidiactl", "dxg", "mali0", "kgsl-3d0"}) {
        if (std::filesystem::exists(devices / device, error)) {
            return true;
        }
    }
    auto entry = std::filesystem::directory_iterator(devices / "dri", error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (entry->path().filename().native().starts_with("renderD")) {
            return true;
        }
    }
    return false;
}

} // namespace starbloom
