// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/WholeFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace starbloom {

namespace {

Error cannotRead(const std::filesystem::path& path, const std::string& why) {
    return Error{"cannot read " + path.string() + ": " + why};
}

std::string reason(int errorNumber) {
    return std::error_code(errorNumber, std::generic_category()).message();
}

/// A file descriptor that is closed at the end of its scope.
class Descriptor {
public:
    explicit Descriptor(int number)
        : m_number(number) {}

    ~Descriptor() {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_number; }

private:
    int m_number;
};

/// What an opened file must be before it is read; empty when it is that.
std::string objection(int descriptor, std::size_t limit) {
    struct stat about {};

    if (::fstat(descriptor, &about) != 0) {
        return reason(errno);
    }
    if (S_ISDIR(about.st_mode)) {
        return reason(EISDIR);
    }
    if (!S_ISREG(about.st_mode)) {
        return "that is not a file";
    }
    if (static_cast<unsigned long long>(about.st_size) > limit) {
        return reason(EFBIG);
    }
    return {};
}

} // namespace

Result<std::optional<std::vector<std::byte>>> readWholeFile(const std::filesystem::path& path, std::size_t limit) {
    // A pipe without a writer would block the opening for ever.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (file.number() < 0) {
        if (errno == ENOENT) {
            return std::optional<std::vector<std::byte>>{};
        }
        return cannotRead(path, reason(errno));
    }
    if (const auto why = objection(file.number(), limit); !why.empty()) {
        return cannotRead(path, why);
    }
    // The size is not relied on: the file may grow or shrink while it is read.
    std::vector<std::byte> bytes;
    std::vector<std::byte> piece(64 * 1024);
    while (true) {
        const auto count = ::read(file.number(), piece.data(), piece.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return cannotRead(path, reason(errno));
        }
        if (count == 0) {
            return std::optional(std::move(bytes));
        }
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
        if (bytes.size() > limit) {
            return cannotRead(path, reason(EFBIG));
        }
    }
}

} // namespace starbloom
