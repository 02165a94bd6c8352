// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/persistence/stores/StoreFixture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <random>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace starbloom {

namespace {

using Microseconds = std::chrono::duration<double, std::micro>;
using Clock = std::chrono::steady_clock;

class KilledLaunch : public StoreFixture {
protected:
    pid_t start() const {
        std::string program = LAUNCH_STORES;
        std::string argument = home.path().string();
        char* arguments[] = {program.data(), argument.data(), nullptr};
        pid_t process = -1;
        EXPECT_EQ(::posix_spawn(&process, program.c_str(), nullptr, nullptr, arguments, environ), 0);
        return process;
    }

    /// Whether it ran to its end; waits for it.
    static bool completed(pid_t process) {
        int status = 0;
        ::waitpid(process, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    /// Kills it after a delay, to the microsecond: sleeping is too coarse, so the end of the wait is spent spinning.
    static bool completedBefore(pid_t process, Microseconds delay, Clock::time_point started) {
        const auto end = started + std::chrono::duration_cast<Clock::duration>(delay);
        std::this_thread::sleep_until(end - std::chrono::microseconds(100));
        while (Clock::now() < end) {
        }
        ::kill(process, SIGKILL);
        return completed(process);
    }

    void expectWholeOrAbsent() const {
        for (const auto& [file, definition] : files) {
            if (fileExists(file)) {
                ASSERT_EQ(rowsOf(file, *definition), definition->rows.size()) << file;
            }
        }
    }

    static std::size_t rowsOf(const std::filesystem::path& file, const StoreDefinition& definition) {
        const auto rows = runSql(file, "select field, value from " + definition.table);
        std::size_t equal = 0;
        for (std::size_t i = 0; i < rows.size() && i < definition.rows.size(); ++i) {
            equal += rows[i] == definition.rows[i].key + "|" + definition.rows[i].value ? 1 : 0;
        }
        return rows.size() == equal ? equal : 0;
    }

    std::vector<std::pair<std::filesystem::path, const StoreDefinition*>> files{
        {app.filePath0(), &windowsDefinition()},
        {app.filePath1(), &preferencesDefinition()},
        {app.filePath2(), &generalDefinition()}};
};

TEST_F(KilledLaunch, leavesEachStoreWholeOrAbsentAndTheNextOneMakesUpForIt) {
    constexpr int kills = 200;
    std::array<Microseconds, 5> lengths{};
    for (Microseconds& length : lengths) {
        std::filesystem::remove_all(app.filePathA());
        const auto started = Clock::now();
        ASSERT_TRUE(completed(start()));
        length = Clock::now() - started;
    }
    std::ranges::sort(lengths);
    const Microseconds usual = lengths[lengths.size() / 2]; // On a busy machine the longest may be far from the others.
    std::mt19937 random(20'240'607);
    int interrupted = 0;
    int withPart = 0;
    for (int i = 0; i < kills; ++i) {
        std::filesystem::remove_all(app.filePathA());
        // One delay in each slice of a whole run, so that no stretch of it is left out by chance.
        const double slice = (i + std::uniform_real_distribution<>(0.0, 1.0)(random)) / kills;
        const auto started = Clock::now();
        interrupted += completedBefore(start(), usual * slice, started) ? 0 : 1;
        expectWholeOrAbsent();

        const bool exists = fileExists(app.filePathA());
        const auto entries = exists ? std::distance(std::filesystem::directory_iterator(app.filePathA()), {}) : 0;
        withPart += entries > 0 && entries < 3 ? 1 : 0;
        ASSERT_TRUE(completed(start()));
        for (const auto& [file, definition] : files) {
            ASSERT_EQ(rowsOf(file, *definition), definition->rows.size()) << file;
        }
        ASSERT_EQ(std::distance(std::filesystem::directory_iterator(app.filePathA()), {}), 3) << "leftovers";
    }
    // A test that kills too early or too late would pass without having tested anything.
    EXPECT_GT(interrupted, kills / 4);
    EXPECT_GT(withPart, 0);
    RecordProperty("interrupted", interrupted);
    RecordProperty("interruptedBetweenStores", withPart);
}

TEST_F(KilledLaunch, leftoversOfRunningProgramsStay) {
    const auto running = app.filePathA() / (".starbloom." + std::to_string(::getpid()) + "-0.part");
    const auto other = app.filePathA() / ".starbloom.notes.part";
    std::ofstream{running} << "now";
    std::ofstream{other} << "not ours";
    ASSERT_TRUE(completed(start()));
    EXPECT_TRUE(fileExists(running));
    EXPECT_TRUE(fileExists(other));
    std::filesystem::last_write_time(running, std::filesystem::file_time_type::clock::now() - std::chrono::hours(2));
    ASSERT_TRUE(completed(start()));
    EXPECT_FALSE(fileExists(running)) << "too old to be what that program is writing";
}

} // namespace

} // namespace starbloom
