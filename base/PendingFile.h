// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <span>

namespace starbloom {

/// A file on its way to its final name.
///
/// What is written goes to a hidden file of a unique name in the target's folder; commit() brings it to the disk and
/// renames it over the target, so that at every moment the target is either what it was before or the whole new file.
/// Destroying a PendingFile that was not committed removes the hidden file and leaves the target alone.
///
///     auto file = PendingFile::create("show.png");
///     if (!file) return file.error();
///     if (auto r = file.value().write(bytes); !r) return r;
///     return file.value().commit();
///
/// Not thread-safe. Error messages name the target and end with the system's own reason.
class PendingFile {
public:
    /// Makes the hidden file, with the permissions that a new file of the user has. Fails when the folder is missing or
    /// not writable, or when the target is a folder.
    static Result<PendingFile> create(const std::filesystem::path& target);

    PendingFile(PendingFile&& other) noexcept;
    PendingFile& operator=(PendingFile&& other) noexcept;
    ~PendingFile();

    /// Where the bytes are now. For libraries that insist on opening a file by name.
    const std::filesystem::path& temporaryPath() const { return m_temporary; }

    const std::filesystem::path& target() const { return m_target; }

    /// Appends all bytes. After a failure nothing more may be written; only destruction makes sense.
    Result<void> write(std::span<const std::byte> bytes);

    /// Syncs and renames. The object holds no file afterwards, whether this succeeded or not.
    Result<void> commit();

private:
    PendingFile(std::filesystem::path target, std::filesystem::path temporary, int descriptor);
    void discard() noexcept;
    Error failure(int errorNumber) const;

    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    int m_descriptor = -1;
};

/// Writes a whole file at once, by the way of PendingFile.
Result<void> writeFile(const std::filesystem::path& target, std::span<const std::byte> bytes);

} // namespace starbloom
