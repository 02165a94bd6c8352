// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Progress.h"

#include "cli/Report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <unistd.h>

namespace starbloom {

namespace {

constexpr int barWidth = 30;

std::string timeLeft(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::ceil(seconds));
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%02lld:%02lld", static_cast<long long>(whole / 60),
                  static_cast<long long>(whole % 60));
    return text.data();
}

} // namespace

std::string progressLine(std::int64_t done, std::int64_t total, std::chrono::duration<double> elapsed) {
    const double part = total > 0 ? std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0) : 1.0;
    const int filled = static_cast<int>(part * barWidth);
    std::string line = "[" + std::string(static_cast<std::size_t>(filled), '#') +
                       std::string(static_cast<std::size_t>(barWidth - filled), '-') + "] ";
    line += std::to_string(done) + "/" + std::to_string(total) + " frames  ";
    line += std::to_string(static_cast<int>(part * 100.0)) + " %  ";
    line += done > 0 ? timeLeft(elapsed.count() * (1.0 - part) / part) + " left" : "starting";
    return line;
}

Progress::Progress(std::int64_t total, ProgressStyle style)
    : m_total(total)
    , m_style(style == ProgressStyle::Bar && ::isatty(STDERR_FILENO) != 1 ? ProgressStyle::None : style) {
    update(0);
}

Progress::~Progress() {
    if (m_style == ProgressStyle::Bar) {
        std::fputs("\r\033[K", stderr);
        setBarShown(false);
    }
}

void Progress::update(std::int64_t done) {
    const auto now = Clock::now();
    if (m_drawn && done < m_total && now - m_lastDrawn < std::chrono::milliseconds(100)) {
        return;
    }
    m_lastDrawn = now;
    m_drawn = true;
    show(done, now - m_start);
}

void Progress::show(std::int64_t done, std::chrono::duration<double> elapsed) const {
    if (m_style == ProgressStyle::Bar) {
        setBarShown(true);
        std::fputs(("\r" + progressLine(done, m_total, elapsed) + "\033[K").c_str(), stderr);
    } else if (m_style == ProgressStyle::Json) {
        const auto left =
            elapsed * (static_cast<double>(m_total - done) / static_cast<double>(std::max<std::int64_t>(done, 1)));
        reportProgress({done, m_total, elapsed.count(), done > 0 ? left.count() : -1.0});
    }
}

} // namespace starbloom
