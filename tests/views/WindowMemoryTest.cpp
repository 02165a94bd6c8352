// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/WindowMemory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <vector>

namespace starbloom {

namespace {

TEST(WindowMemory, AServerThatHasNotReadAllIsWaitedFor) {
    std::array<int, 2> ends{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    const ServerQueue queue(ends[0]);
    EXPECT_TRUE(queue.isEmpty());
    std::vector<char> bytes(5000);
    const auto length = static_cast<ssize_t>(bytes.size());
    ASSERT_EQ(write(ends[0], bytes.data(), bytes.size()), length);
    EXPECT_FALSE(queue.isEmpty());
    ASSERT_EQ(read(ends[1], bytes.data(), bytes.size() - 1), length - 1);
    EXPECT_FALSE(queue.isEmpty());
    ASSERT_EQ(read(ends[1], bytes.data(), 1), 1);
    EXPECT_TRUE(queue.isEmpty());
    close(ends[0]);
    close(ends[1]);
    EXPECT_FALSE(queue.isEmpty());
    EXPECT_FALSE(ServerQueue(-1).isEmpty());
}

TEST(WindowMemory, TellsSharedMemoryFromTheProgramsOwn) {
    constexpr std::size_t size = 40000;
    constexpr int access = PROT_READ | PROT_WRITE;
    for (const int sharing : {MAP_SHARED, MAP_PRIVATE}) {
        auto* const memory = static_cast<char*>(mmap(nullptr, size, access, sharing | MAP_ANONYMOUS, -1, 0));
        ASSERT_NE(memory, MAP_FAILED);
        for (const std::size_t offset : {std::size_t{0}, size - 1}) {
            EXPECT_EQ(WindowMemory::isShared(memory + offset), sharing == MAP_SHARED) << offset;
        }
        munmap(memory, size);
    }
    EXPECT_FALSE(WindowMemory::isShared(nullptr));
}

} // namespace

} // namespace starbloom
