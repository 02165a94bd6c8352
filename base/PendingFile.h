// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
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
/// A target that is a symbolic link stays one: what it leads to is replaced. The new file has the older one's mode.
///
/// commitAs() does the same without ever replacing a file.
///
/// Not thread-safe. Error messages name the target and end with the system's own reason.
class PendingFile {
public:
    /// Makes the hidden file, with the permissions that a new file of the user has. Fails when the folder is missing or
    /// not writable, or when the target is a folder, a pipe or a device.
    static Result<PendingFile> create(const std::filesystem::path& target);

    /// The same for commitAs(): whatever the target is now, only its folder matters.
    static Result<PendingFile> createBeside(const std::filesystem::path& target);

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

    /// Syncs and gives the file a name in the same folder that nothing bears yet, however many programs try at the
    /// same moment. False when the name is taken: then the file waits for another name. After success or failure the
    /// object holds no file.
    Result<bool> commitAs(const std::filesystem::path& target);

private:
    PendingFile(std::filesystem::path target, std::filesystem::path temporary, int descriptor);
    void discard() noexcept;
    Error failure(int errorNumber) const;
    Error giveUp(int errorNumber);

    std::filesystem::path m_target;
    std::filesystem::path m_temporary;
    int m_descriptor = -1;
    std::optional<std::filesystem::perms> m_perms; ///< The older file's.
    bool m_isSynced = false;                       ///< Whether commitAs() has brought all bytes to the disk already.
};

/// Writes a whole file at once, by the way of PendingFile.
Result<void> writeFile(const std::filesystem::path& target, std::span<const std::byte> bytes);

/// Writes a whole file at once under the first name that is free, and replaces nothing. `candidate` gives the names to
/// try, all in one folder, for 0, 1, 2 and so on; the result is the one that it became. Where the file system can keep
/// a file without a name, a program that is killed meanwhile leaves nothing, not even a hidden file.
Result<std::filesystem::path> writeNewFile(const std::function<std::filesystem::path(int)>& candidate,
                                           std::span<const std::byte> bytes);

} // namespace starbloom
