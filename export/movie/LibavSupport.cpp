// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/LibavSupport.h"

#include "base/Log.h"

#include <array>
#include <cstdarg>
#include <mutex>
#include <string_view>

namespace starbloom {

namespace {

void forwardLine(void* context, int level, const char* format, va_list arguments) {
    if ((level & 0xFF) > AV_LOG_WARNING) {
        return;
    }
    thread_local int printPrefix = 1;
    std::array<char, 1024> text{};
    av_log_format_line2(context, level, format, arguments, text.data(), static_cast<int>(text.size()), &printPrefix);
    std::string_view line = text.data();
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.remove_suffix(1);
    }
    if (!line.empty()) {
        log(LogLevel::Warning, "export", line);
    }
}

} // namespace

std::string reasonOf(int averror) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(averror, text.data(), text.size());
    return text.data();
}

void forwardLibavLog() {
    static std::once_flag done;
    std::call_once(done, [] { av_log_set_callback(forwardLine); });
}

} // namespace starbloom
