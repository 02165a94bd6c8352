// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/Encoders.h"

#include <utility>

/// The door of the module. What it is built from has a log of its own, which is led into the program's.
extern "C" [[gnu::visibility("default")]] starbloom::Encoders* starbloomEncoders(starbloom::LogSink sink) {
    starbloom::setLogSink(std::move(sink));
    return &starbloom::linkedEncoders();
}
