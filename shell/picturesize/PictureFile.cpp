// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/picturesize/PictureFile.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace starbloom {

std::optional<PictureFile> PictureFile::open(const std::string& path) {
    struct stat status {};

    // Before it is opened, for opening alone makes some devices act; and after, for it may have been exchanged.
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return std::nullopt;
    }
    PictureFile file(descriptor);
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    file.m_headSize =
        static_cast<std::size_t>(std::max<ssize_t>(0, ::pread(descriptor, file.m_head.data(), file.m_head.size(), 0)));
    return file;
}

PictureFile::PictureFile(int descriptor)
    : m_descriptor(descriptor) {}

PictureFile::PictureFile(PictureFile&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
    , m_headSize(other.m_headSize)
    , m_head(other.m_head) {}

PictureFile::~PictureFile() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

std::string PictureFile::path() const {
    return "/dev/fd/" + std::to_string(m_descriptor);
}

} // namespace starbloom
