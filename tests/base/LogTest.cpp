// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace starbloom {

namespace {

class LogTest : public testing::Test {
protected:
    ~LogTest() override { setLogSink({}); }
};

TEST_F(LogTest, messagesGoToTheLatestSinkAndNowhereWithoutOne) {
    std::vector<std::string> first;
    std::vector<std::string> second;
    log(LogLevel::Warning, "base", "before any sink");
    setLogSink([&](LogLevel, std::string_view area, std::string_view message) {
        first.push_back(std::string(area) + ": " + std::string(message));
    });
    log(LogLevel::Info, "engine", "one");
    setLogSink([&](LogLevel level, std::string_view, std::string_view message) {
        second.push_back((level == LogLevel::Warning ? "!" : "") + std::string(message));
    });
    log(LogLevel::Warning, "export", "two");
    setLogSink({});
    log(LogLevel::Warning, "export", "three");
    EXPECT_THAT(first, testing::ElementsAre("engine: one"));
    EXPECT_THAT(second, testing::ElementsAre("!two"));
}

TEST_F(LogTest, messagesOfManyThreadsNeitherOverlapNorGetLost) {
    int count = 0; // plain on purpose: the sink is promised to be called by one thread at a time
    std::atomic<int> inside = 0;
    std::atomic<bool> overlapped = false;
    setLogSink([&](LogLevel, std::string_view, std::string_view) {
        overlapped = overlapped || ++inside > 1;
        ++count;
        std::this_thread::yield();
        --inside;
    });
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([] {
                for (int k = 0; k < 500; ++k) {
                    log(LogLevel::Info, "base", "message");
                }
            });
        }
    }
    EXPECT_EQ(count, 2000);
    EXPECT_FALSE(overlapped);
}

} // namespace

} // namespace starbloom
