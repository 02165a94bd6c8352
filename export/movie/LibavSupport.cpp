// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/LibavSupport.h"

#include "base/Log.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

namespace starbloom {

namespace {

/// Failures are told where they happen, and so is their reason: other threads' words do not get in between.
thread_local std::string lastErrorLine;

/// Without "[mov,mp4 @ 0x5581a0]", which says nothing to a user.
std::string_view withoutSpeaker(std::string_view line) {
    while (line.starts_with('[')) {
        const auto end = line.find("] ");
        if (end == std::string_view::npos || line.substr(0, end).find(" @ 0x") == std::string_view::npos) {
            break;
        }
        line.remove_prefix(end + 2);
    }
    return line;
}

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
    if (line.empty()) {
        return;
    }
    if ((level & 0xFF) <= AV_LOG_ERROR) {
        lastErrorLine = withoutSpeaker(line);
    }
    log(LogLevel::Info, "export", line);
}

} // namespace

std::string reasonOf(int averror) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(averror, text.data(), text.size());
    const std::string detail = std::exchange(lastErrorLine, {});
    return detail.empty() ? text.data() : std::string(text.data()) + " (" + detail + ")";
}

void forwardLibavLog() {
    static std::once_flag done;
    std::call_once(done, [] { av_log_set_callback(forwardLine); });
    lastErrorLine.clear();
}

int encoderThreads(int threads) {
    return std::clamp(threads, 0, 16);
}

int encodeFrame(AVCodecContext& encoder, const AVFrame* frame, AVPacket& packet,
                const std::function<bool(AVPacket& packet)>& take) {
    int error = avcodec_send_frame(&encoder, frame);
    for (bool goOn = true; goOn && error >= 0;) {
        error = avcodec_receive_packet(&encoder, &packet);
        if (error >= 0) {
            goOn = take(packet);
            av_packet_unref(&packet);
        } else if (error == AVERROR(EAGAIN) || error == AVERROR_EOF) {
            return 0;
        }
    }
    return error;
}

} // namespace starbloom
