// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MemoryCheck.h"

#include "export/movie/FrameStore.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <string>
#include <string_view>

namespace starbloom {

namespace {

/// How much larger than a single one the mean of many compressed frames may be, and how well frames compress at best.
/// Measured; see docs/movies.md.
constexpr double sampleMargin = 2.5;
constexpr double bestRatio = 6.0;

/// Beside the compressed frames: those in the queue and those kept for use again, and the encoder with what it looks
/// at. Measured at 1920 x 1080: 353 MB in all.
constexpr std::uint64_t uncompressedBytesPerPixel = 2 * FrameStore::queueLength * ImageBuffer::channels + 110;

/// For everything else.
constexpr std::uint64_t fixedBytes = 32'000'000;

/// The number at the start of a file; nothing when there is none, as for a limit of "max".
std::optional<std::uint64_t> numberIn(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::uint64_t number = 0;
    return file >> number ? std::optional(number) : std::nullopt;
}

/// The number after a name at the start of a line.
std::optional<std::uint64_t> numberAfter(const std::filesystem::path& path, std::string_view name) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(name)) {
            std::uint64_t number = 0;
            std::size_t at = name.size();
            at = std::min(line.find_first_not_of(" \t", at), line.size());
            for (; at < line.size() && line[at] >= '0' && line[at] <= '9'; ++at) {
                number = number * 10 + static_cast<std::uint64_t>(line[at] - '0');
            }
            return number;
        }
    }
    return std::nullopt;
}

struct GroupFiles {
    const char* limit;
    const char* usage;
    const char* cache; ///< A line in memory.stat.
};

constexpr GroupFiles version1{"memory.limit_in_bytes", "memory.usage_in_bytes", "total_inactive_file "};
constexpr GroupFiles version2{"memory.max", "memory.current", "inactive_file "};

/// The least that a group and those around it leave.
std::optional<std::uint64_t> leftInGroups(const std::filesystem::path& root, const std::filesystem::path& group,
                                          const GroupFiles& files) {
    std::optional<std::uint64_t> least;
    std::filesystem::path folder = root / group.relative_path();
    while (true) {
        const auto limit = numberIn(folder / files.limit);
        if (const auto usage = numberIn(folder / files.usage); limit && usage) {
            const std::uint64_t cache = numberAfter(folder / "memory.stat", files.cache).value_or(0);
            const std::uint64_t used = *usage - std::min(cache, *usage);
            const std::uint64_t left = *limit - std::min(used, *limit);
            least = std::min(least.value_or(left), left);
        }
        // A container sees its own group at the root, whatever the group's name.
        if (folder == root || folder.native().size() <= root.native().size()) {
            return least;
        }
        folder = folder.parent_path();
    }
}

/// Goes through lines such as "0::/user.slice" (version 2) and "4:memory:/user" (version 1).
std::optional<std::uint64_t> leftInOwnGroups(const MemoryPaths& paths) {
    std::optional<std::uint64_t> least;
    std::ifstream file(paths.ownGroups);
    for (std::string line; std::getline(file, line);) {
        const auto first = line.find(':');
        const auto second = first == std::string::npos ? first : line.find(':', first + 1);
        if (second == std::string::npos) {
            continue;
        }
        const std::string controllers = "," + line.substr(first + 1, second - first - 1) + ",";
        const std::filesystem::path group = line.substr(second + 1);
        std::optional<std::uint64_t> left;
        if (controllers == ",,") {
            left = leftInGroups(paths.groups, group, version2);
        } else if (controllers.find(",memory,") != std::string::npos) {
            left = leftInGroups(paths.groups / "memory", group, version1);
        }
        if (left) {
            least = std::min(least.value_or(*left), *left);
        }
    }
    return least;
}

} // namespace

std::optional<std::uint64_t> availableMemory(const MemoryPaths& paths) {
    auto available = numberAfter(paths.memoryInfo, "MemAvailable:");
    if (available) {
        *available *= 1024;
    }
    if (const auto left = leftInOwnGroups(paths)) {
        available = std::min(available.value_or(*left), *left);
    }
    return available;
}

MemoryVerdict checkMemory(const MovieSettings& settings, int width, int height, const ImageBuffer& sample,
                          std::optional<std::uint64_t> available) {
    const auto pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    const auto raw = static_cast<double>(pixels * ImageBuffer::channels);
    double perFrame = raw;
    if (!sample.bytes().empty()) {
        const double ratio = static_cast<double>(sample.bytes().size()) / static_cast<double>(packedSize(sample));
        perFrame = std::clamp(raw / ratio * sampleMargin, raw / bestRatio, raw);
    }
    const std::uint64_t beside = pixels * uncompressedBytesPerPixel + fixedBytes;
    MemoryVerdict verdict;
    verdict.needed = static_cast<std::uint64_t>(perFrame * static_cast<double>(settings.frameCount())) + beside;
    verdict.available = available.value_or(std::numeric_limits<std::uint64_t>::max());
    verdict.frameLimit = verdict.available - std::min(beside, verdict.available);
    return verdict;
}

} // namespace starbloom
