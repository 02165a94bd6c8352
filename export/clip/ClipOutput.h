// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/PendingFile.h"
#include "base/Result.h"
#include "export/clip/ClipWriter.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace starbloom {

/// Where the bytes of a clip go: a file that is there when all of it is, or a stream of the caller's.
///
/// Destroying one that was not finished leaves no file. Error messages name the target. One thread at a time.
class ClipOutput {
public:
    static Result<ClipOutput> open(const ClipDestination& destination);

    Result<void> write(std::span<const std::byte> bytes);

    /// Writes over what is there already, for numbers that are known in the end only. Not for streams.
    Result<void> rewrite(std::uint64_t offset, std::span<const std::byte> bytes);

    /// Brings a file to its final name.
    Result<void> finish();

    /// The hidden file, for libraries that open files themselves. Not for streams.
    const std::filesystem::path& temporaryPath() const { return m_file->temporaryPath(); }

    /// An Error about the target, for a reason that is known elsewhere.
    Error failure(const std::string& reason) const;

private:
    ClipOutput() = default;

    Result<void> writeToStream(std::span<const std::byte> bytes);

    std::optional<PendingFile> m_file;
    int m_stream = -1;
};

/// The name of a destination in messages.
std::string nameOf(const ClipDestination& destination);

} // namespace starbloom
