// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/PendingFile.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace starbloom {

namespace {

std::string reason(int errorNumber) {
    return std::error_code(errorNumber, std::generic_category()).message();
}

Error cannotWrite(const std::filesystem::path& target, const std::string& why) {
    return Error{"cannot write " + target.string() + ": " + why};
}

/// Brings a rename to the disk. Some file systems cannot sync a folder; the file itself is safe by then.
void syncFolder(const std::filesystem::path& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

std::filesystem::path folderOf(const std::filesystem::path& target) {
    const auto parent = target.parent_path();
    return parent.empty() ? std::filesystem::path(".") : parent;
}

/// 0, or the error's number.
int writeAll(int descriptor, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            return errno;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return 0;
}

/// Where a chain of symbolic links ends, even when nothing is there; the target itself where that cannot be told.
std::filesystem::path endOfLinks(const std::filesystem::path& target) {
    constexpr int longestChain = 40; // As the system has it.
    std::filesystem::path end = target;
    std::error_code error;
    for (int links = 0; links < longestChain && std::filesystem::is_symlink(end, error); ++links) {
        const auto next = std::filesystem::read_symlink(end, error);
        if (error) {
            return target;
        }
        end = end.parent_path() / next;
    }
    return end;
}

/// Renames over an empty file that was made here and nowhere else, for file systems without better means.
int renameToReserved(const char* from, const char* to) {
    const int descriptor = ::open(to, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        return errno;
    }
    ::close(descriptor);
    if (::rename(from, to) == 0) {
        return 0;
    }
    const int error = errno;
    ::unlink(to);
    return error;
}

/// Renames unless the new name is taken, in one step of the file system where it has one. 0, or the error's number.
int renameToNew(const char* from, const char* to) {
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    if (::link(from, to) == 0) {
        ::unlink(from);
        return 0;
    }
    const bool hasNoLinks = errno == EPERM || errno == ENOSYS || errno == EOPNOTSUPP;
    return hasNoLinks ? renameToReserved(from, to) : errno;
}

} // namespace

Result<PendingFile> PendingFile::create(const std::filesystem::path& target) {
    if (target.filename().empty()) {
        return cannotWrite(target, "that is not the name of a file");
    }
    const auto end = endOfLinks(target);
    std::error_code ignored;
    const auto older = std::filesystem::status(end, ignored);
    if (std::filesystem::is_directory(older)) {
        return cannotWrite(target, reason(EISDIR));
    }
    if (std::filesystem::exists(older) && !std::filesystem::is_regular_file(older)) {
        return cannotWrite(target, "that is a pipe or a device, and no file");
    }
    auto file = createBeside(end);
    if (file && std::filesystem::exists(older)) {
        file.value().m_perms = older.permissions() & std::filesystem::perms::all;
    }
    return file;
}

Result<PendingFile> PendingFile::createBeside(const std::filesystem::path& target) {
    // The process number keeps programs apart, the counter the attempts of this one; O_EXCL settles what is left.
    for (int attempt = 0; attempt < 1000; ++attempt) {
        std::array<char, 64> suffix{};
        std::snprintf(suffix.data(), suffix.size(), ".%ld-%d.part", static_cast<long>(::getpid()), attempt);
        // The name of the target could already be as long as a name may be, so it does not become a part of this one.
        const auto temporary = folderOf(target) / (std::string(".starbloom") + suffix.data());
        const int descriptor = ::open(temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0) {
            return PendingFile(target, temporary, descriptor);
        }
        if (errno != EEXIST) {
            return cannotWrite(target, reason(errno));
        }
    }
    return cannotWrite(target, reason(EEXIST));
}

PendingFile::PendingFile(std::filesystem::path target, std::filesystem::path temporary, int descriptor)
    : m_target(std::move(target))
    , m_temporary(std::move(temporary))
    , m_descriptor(descriptor) {}

PendingFile::PendingFile(PendingFile&& other) noexcept
    : m_target(std::move(other.m_target))
    , m_temporary(std::move(other.m_temporary))
    , m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_perms(other.m_perms)
    , m_isSynced(other.m_isSynced) {}

PendingFile& PendingFile::operator=(PendingFile&& other) noexcept {
    if (this != &other) {
        discard();
        m_target = std::move(other.m_target);
        m_temporary = std::move(other.m_temporary);
        m_descriptor = std::exchange(other.m_descriptor, -1);
        m_perms = other.m_perms;
        m_isSynced = other.m_isSynced;
    }
    return *this;
}

PendingFile::~PendingFile() {
    discard();
}

Result<void> PendingFile::write(std::span<const std::byte> bytes) {
    m_isSynced = false;
    const int error = writeAll(m_descriptor, bytes);
    return error == 0 ? Result<void>() : failure(error);
}

Result<void> PendingFile::commit() {
    if (m_perms && m_descriptor >= 0) {
        // Only now, as the older file may be one that its owner may not write. Some file systems have no modes.
        [[maybe_unused]] const int ignored = ::fchmod(m_descriptor, static_cast<mode_t>(*m_perms));
    }
    // Some file systems report a full disk only here.
    if (::fsync(m_descriptor) != 0) {
        return giveUp(errno);
    }
    const int descriptor = std::exchange(m_descriptor, -1);
    if (::close(descriptor) != 0 || ::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        const auto error = failure(errno);
        ::unlink(m_temporary.c_str());
        return error;
    }
    syncFolder(folderOf(m_target));
    return {};
}

Result<bool> PendingFile::commitAs(const std::filesystem::path& target) {
    m_target = target;
    if (!m_isSynced && ::fsync(m_descriptor) != 0) {
        return giveUp(errno);
    }
    m_isSynced = true; // There may be a thousand names to try.
    const int error = renameToNew(m_temporary.c_str(), m_target.c_str());
    if (error == EEXIST) {
        return false;
    }
    if (error != 0) {
        return giveUp(error);
    }
    ::close(std::exchange(m_descriptor, -1));
    syncFolder(folderOf(m_target));
    return true;
}

void PendingFile::discard() noexcept {
    if (m_descriptor >= 0) {
        ::close(std::exchange(m_descriptor, -1));
        ::unlink(m_temporary.c_str());
    }
}

Error PendingFile::failure(int errorNumber) const {
    return cannotWrite(m_target, reason(errorNumber));
}

Error PendingFile::giveUp(int errorNumber) {
    discard();
    return failure(errorNumber);
}

Result<void> writeFile(const std::filesystem::path& target, std::span<const std::byte> bytes) {
    auto file = PendingFile::create(target);
    if (!file) {
        return file.error();
    }
    if (auto written = file.value().write(bytes); !written) {
        return written;
    }
    return file.value().commit();
}

namespace {

using Candidate = std::function<std::filesystem::path(int)>;

/// A file without a name: the system takes it back when the program ends before it has got one.
class NamelessFile {
public:
    explicit NamelessFile(const std::filesystem::path& folder)
        : m_descriptor(::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666)) {}

    ~NamelessFile() {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }

    NamelessFile(const NamelessFile&) = delete;
    NamelessFile& operator=(const NamelessFile&) = delete;

    bool exists() const { return m_descriptor >= 0; }

    /// All of them, down to the disk. 0, or the error's number.
    int write(std::span<const std::byte> bytes) const {
        const int error = writeAll(m_descriptor, bytes);
        return error != 0 || ::fsync(m_descriptor) == 0 ? error : errno;
    }

    /// Likewise.
    int takeName(const std::filesystem::path& path) const {
        const std::string self = "/proc/self/fd/" + std::to_string(m_descriptor);
        return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
    }

private:
    int m_descriptor;
};

/// Nothing where the file system has no such files, or something else is wrong that the other way can tell.
Result<std::optional<std::filesystem::path>> writeNameless(const Candidate& candidate,
                                                           std::span<const std::byte> bytes) {
    const NamelessFile file(folderOf(candidate(0)));
    if (!file.exists()) {
        return std::optional<std::filesystem::path>();
    }
    if (const int error = file.write(bytes); error != 0) {
        return cannotWrite(candidate(0), reason(error));
    }
    int error = EEXIST;
    for (int n = 0; error == EEXIST; ++n) {
        auto path = candidate(n);
        error = file.takeName(path);
        if (error == 0) {
            syncFolder(folderOf(path));
            return std::optional(std::move(path));
        }
    }
    return std::optional<std::filesystem::path>();
}

Result<std::filesystem::path> writeHidden(const Candidate& candidate, std::span<const std::byte> bytes) {
    auto file = PendingFile::createBeside(candidate(0));
    if (!file) {
        return file.error();
    }
    if (auto written = file.value().write(bytes); !written) {
        return written.error();
    }
    for (int n = 0;; ++n) {
        auto path = candidate(n);
        const auto committed = file.value().commitAs(path);
        if (!committed) {
            return committed.error();
        }
        if (committed.value()) {
            return path;
        }
    }
}

} // namespace

Result<std::filesystem::path> writeNewFile(const std::function<std::filesystem::path(int)>& candidate,
                                           std::span<const std::byte> bytes) {
    auto written = writeNameless(candidate, bytes);
    if (!written) {
        return written.error();
    }
    return written.value() ? Result<std::filesystem::path>(*written.value()) : writeHidden(candidate, bytes);
}

} // namespace starbloom
