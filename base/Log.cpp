// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"

#include <mutex>
#include <utility>

namespace starbloom {

namespace {

struct SinkHolder {
    std::mutex mutex;
    LogSink sink;
};

SinkHolder& holder() {
    static SinkHolder instance;
    return instance;
}

} // namespace

void setLogSink(LogSink sink) {
    const std::scoped_lock lock(holder().mutex);
    holder().sink = std::move(sink);
}

void log(LogLevel level, std::string_view area, std::string_view message) {
    const std::scoped_lock lock(holder().mutex);
    if (holder().sink) {
        holder().sink(level, area, message);
    }
}

} // namespace starbloom
