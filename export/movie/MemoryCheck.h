// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "export/movie/MovieSettings.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace starbloom {

/// Where the system tells about memory. Tests put their own files there.
struct MemoryPaths {
    std::filesystem::path memoryInfo = "/proc/meminfo";
    std::filesystem::path ownGroups = "/proc/self/cgroup";
    std::filesystem::path groups = "/sys/fs/cgroup";
};

/// Bytes that this process can still take: what the system has available, or less where the process or a group that it
/// lies in has a limit (control groups of both versions; memory that only caches files counts as free). Nothing when
/// the system does not say.
std::optional<std::uint64_t> availableMemory(const MemoryPaths& paths = {});

/// What a recording needs and what there is, in bytes.
struct MemoryVerdict {
    std::uint64_t needed = 0;
    std::uint64_t available = 0; ///< The largest number when the system does not say.

    /// How many bytes of frames a FrameStore may keep: what is there but for what the program needs beside them.
    std::uint64_t frameLimit = 0;

    bool fits() const { return needed <= available; }
};

/// Whether a recording fits into memory. `sample` is the stage as it is before the recording, at the launch rate that
/// the recording will have (not at the low one of a fade-in): how well it compresses tells how well the frames will. An
/// empty picture makes all frames count as incompressible.
///
/// The estimate in the movie's window is not the measure here: it takes frames as uncompressed, which is several
/// times what most shows take, and would refuse recordings that fit well. docs/movies.md has the figures behind the
/// bound.
MemoryVerdict checkMemory(const MovieSettings& settings, int width, int height, const ImageBuffer& sample,
                          std::optional<std::uint64_t> available);

} // namespace starbloom
