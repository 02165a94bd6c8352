// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/KeptCopy.h"

#include "base/Log.h"
#include "base/PendingFile.h"
#include "base/WholeFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <system_error>
#include <unistd.h>

namespace starbloom {

namespace {

/// Renames unless something has the new name. 0, or the system's error number.
int renameToFreeName(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return errno;
    }
    // Some network file systems know only the rename that replaces, so there the name is looked at first.
    std::error_code status;
    if (std::filesystem::exists(std::filesystem::symlink_status(to, status))) {
        return EEXIST;
    }
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

Error cannotKeep(const std::filesystem::path& path, int errorNumber) {
    return Error{"cannot keep a copy of " + path.string() + ": " +
                 std::error_code(errorNumber, std::generic_category()).message()};
}

/// Why what lies at the path may not simply be written over; no error when it may.
Result<void> checkPresent(const std::filesystem::path& path, std::size_t limit, const ContentCheck& check) {
    const auto present = readWholeFile(path, limit);
    if (!present) {
        return present.error();
    }
    return present.value() ? check(*present.value()) : Result<void>{};
}

} // namespace

Result<std::filesystem::path> keepDamagedCopy(const std::filesystem::path& path) {
    for (int number = 1; number < 10000; ++number) {
        auto kept = path;
        kept += ".damaged-" + std::to_string(number);
        const int errorNumber = renameToFreeName(path, kept);
        if (errorNumber == 0) {
            return kept;
        }
        if (errorNumber != EEXIST) {
            return cannotKeep(path, errorNumber);
        }
    }
    return cannotKeep(path, EEXIST);
}

Result<void> replaceFile(const std::filesystem::path& target, std::span<const std::byte> bytes, std::size_t limit,
                         const ContentCheck& check) {
    if (const auto present = checkPresent(target, limit, check); !present) {
        const auto kept = keepDamagedCopy(target);
        if (!kept) {
            return kept.error();
        }
        log(LogLevel::Warning, "base",
            target.string() + " is kept as " + kept.value().string() + ": " + present.error().message);
    }
    return writeFile(target, bytes);
}

} // namespace starbloom
