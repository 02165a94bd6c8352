// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FlashWatch.h"

#include "cli/Report.h"
#include "export/movie/MovieTiming.h"

#include <array>
#include <cstdio>
#include <string>

namespace starbloom {

namespace {

std::string lineOf(const char* kind, const FlashFinding& finding, double firstSecond) {
    std::array<char, 200> text{};
    if (finding.flashes == 0.0) {
        std::snprintf(text.data(), text.size(), "%s flashes: none\n", kind);
    } else {
        std::snprintf(text.data(), text.size(),
                      "%s flashes: %g in the second from %.2f s on, over %.0f %% of the field of sight around %.0f %% "
                      "from the left and %.0f %% from the top; %s\n",
                      kind, finding.flashes, firstSecond + finding.start, 100.0 * finding.area, 100.0 * finding.x,
                      100.0 * finding.y, finding.passes ? "3 are allowed" : "only 3 are allowed");
    }
    return text.data();
}

FlashEvent eventOf(const FlashFinding& finding, double firstSecond) {
    return {finding.passes, finding.flashes, firstSecond + finding.start, finding.area, finding.x, finding.y};
}

/// A part of a loop is not followed by its own first frame.
Playback playbackOf(const Options& options) {
    const bool whole = options.frames().count() == options.frameCount();
    return options.loop && whole ? Playback::RoundAndRound : Playback::Once;
}

} // namespace

FlashWatch::FlashWatch(const Options& options)
    : m_firstSecond(frameTime(options.frames().first, options.framesPerSecond)) {
    if (options.checksFlashes) {
        m_check.emplace(options.width, options.height, FrameRate{options.framesPerSecond, 1}, playbackOf(options));
    }
}

FrameWatch FlashWatch::watch() {
    return [this](const ImageBuffer& frame) {
        if (m_check) {
            m_check->add(frame);
        }
    };
}

bool FlashWatch::report(bool clean) const {
    if (!m_check) {
        return true;
    }
    const FlashReport found = m_check->report();
    if (reportsAsJson()) {
        reportFlashes(found.passes(), eventOf(found.general, m_firstSecond), eventOf(found.red, m_firstSecond));
        return found.passes();
    }
    const std::string text = lineOf("general", found.general, m_firstSecond) + lineOf("red", found.red, m_firstSecond) +
                             (found.passes() ? "passed: no second has more than three flashes\n"
                                             : "FAILED: a second has more than three flashes\n");
    std::fputs(text.c_str(), clean ? stderr : stdout);
    return found.passes();
}

} // namespace starbloom
