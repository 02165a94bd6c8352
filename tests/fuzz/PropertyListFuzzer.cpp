// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/BackgroundColor.h"
#include "persistence/files/SharedFolder.h"

#include <cstdint>
#include <cstdlib>

using namespace starbloom;

namespace {

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

bool isFraction(float component) {
    return component >= 0.0F && component <= 1.0F;
}

/// Whatever is read as a colour can be drawn, and reads the same after it was written again.
void readColor(std::span<const std::byte> bytes) {
    const auto color = decodeBackgroundColor(bytes);
    if (!color) {
        return;
    }
    const auto& read = color.value();
    require(isFraction(read.red) && isFraction(read.green) && isFraction(read.blue) && isFraction(read.alpha));
    const auto written = encodeBackgroundColor(read);
    require(static_cast<bool>(written));
    const auto again = decodeBackgroundColor(written.value());
    require(again && again.value() == read);
}

/// Whatever is read as a folder is a path that the system can be asked for, and reads the same after it was written
/// again, unless it is too long for that.
void readFolder(std::span<const std::byte> bytes) {
    const auto folder = decodeSharedFolder(bytes);
    if (!folder) {
        return;
    }
    require(folder.value().native().find('\0') == std::string::npos);
    const auto written = encodeSharedFolder(folder.value());
    require(static_cast<bool>(written));
    const auto again = decodeSharedFolder(written.value());
    require(again ? again.value() == folder.value() : folder.value().native().size() > 100000);
}

} // namespace

/// Both files that are property lists, read from memory.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    readColor(bytes);
    readFolder(bytes);
    return 0;
}
