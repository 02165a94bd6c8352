// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/FrameCrew.h"

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace starbloom {

namespace {

TEST(FrameCrew, DoesEachTaskOnceByWorkersOfTheirOwn) {
    FrameCrew crew(3);
    for (int call = 0; call < 2'000; ++call) {
        std::vector<int> done(static_cast<std::size_t>(call % 40));
        std::array<std::atomic<int>, 3> inside{};
        std::atomic<bool> shared = false;
        crew.share(done.size(), 3, [&](std::size_t task, std::size_t worker) {
            shared = shared || inside.at(worker)++ != 0;
            ++done[task];
            --inside[worker];
        });
        ASSERT_THAT(done, testing::Each(1)) << call;
        ASSERT_FALSE(shared) << call;
    }
}

TEST(FrameCrew, HasAsManyAtOnceAsAreWorthwhile) {
    FrameCrew crew(8);
    for (const std::size_t most : {1U, 2U, 8U}) {
        std::atomic<std::size_t> present = 0;
        std::atomic<std::size_t> highest = 0;
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        crew.share(8, most, [&](std::size_t, std::size_t worker) {
            EXPECT_LT(worker, crew.count());
            for (std::size_t now = ++present; highest < now;) {
                highest = now;
            }
            while (highest < most && std::chrono::steady_clock::now() < limit) {
                std::this_thread::yield();
            }
            --present;
        });
        EXPECT_EQ(highest, most);
    }
}

TEST(FrameCrew, HandsOnWhatATaskThrowsAndGoesOn) {
    FrameCrew crew(2);
    for (int call = 0; call < 200; ++call) {
        EXPECT_THROW(crew.share(9, 2,
                                [](std::size_t task, std::size_t) {
                                    if (task > 3) {
                                        throw std::runtime_error("no memory");
                                    }
                                }),
                     std::runtime_error);
        std::atomic<int> done = 0;
        crew.share(9, 2, [&](std::size_t, std::size_t) { ++done; });
        ASSERT_EQ(done, 9);
    }
}

} // namespace

} // namespace starbloom
