// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ShowSeed.h"

#include "base/Log.h"

#include <QByteArray>
#include <QRandomGenerator>

#include <string>

namespace starbloom {

std::uint64_t chooseShowSeed() {
    std::uint64_t seed = QRandomGenerator::system()->generate64();
    if (qEnvironmentVariableIsSet(seedVariable)) {
        const QByteArray text = qgetenv(seedVariable);
        bool isNumber = false;
        const std::uint64_t wanted = text.toULongLong(&isNumber, 10);
        if (isNumber) {
            seed = wanted;
        } else {
            log(LogLevel::Warning, "shell",
                std::string(seedVariable) + " is no decimal number of 64 bits and is ignored: " + text.toStdString());
        }
    }
    log(LogLevel::Info, "shell", "seed of the show: " + std::to_string(seed));
    return seed;
}

} // namespace starbloom
