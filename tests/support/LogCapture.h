// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Log.h"

#include <string>

namespace starbloom {

/// Collects the log while it lives.
class LogCapture {
public:
    LogCapture() {
        setLogSink([this](LogLevel, std::string_view, std::string_view message) {
            m_text += message;
            m_text += '\n';
        });
    }

    ~LogCapture() { setLogSink({}); }

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

} // namespace starbloom
