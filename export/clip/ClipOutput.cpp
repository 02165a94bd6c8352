// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/ClipOutput.h"

#include <cassert>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace starbloom {

namespace {

std::string reasonOf(int errorNumber) {
    return std::error_code(errorNumber, std::generic_category()).message();
}

} // namespace

std::string nameOf(const ClipDestination& destination) {
    if (const auto* path = std::get_if<std::filesystem::path>(&destination)) {
        return path->string();
    }
    return std::get<ClipStream>(destination).descriptor == STDOUT_FILENO ? "standard output" : "the stream";
}

Result<ClipOutput> ClipOutput::open(const ClipDestination& destination) {
    ClipOutput output;
    if (const auto* stream = std::get_if<ClipStream>(&destination)) {
        output.m_stream = stream->descriptor;
        return output;
    }
    auto file = PendingFile::create(std::get<std::filesystem::path>(destination));
    if (!file) {
        return file.error();
    }
    output.m_file = std::move(file).value();
    return output;
}

Result<void> ClipOutput::write(std::span<const std::byte> bytes) {
    return m_file ? m_file->write(bytes) : writeToStream(bytes);
}

Result<void> ClipOutput::writeToStream(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(m_stream, bytes.data(), bytes.size());
        if (written >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) { // The other end of a pipe may have told the system not to wait.
            pollfd room{m_stream, POLLOUT, 0};
            ::poll(&room, 1, -1);
        } else if (errno != EINTR) {
            return failure(reasonOf(errno));
        }
    }
    return {};
}

Result<void> ClipOutput::rewrite(std::uint64_t offset, std::span<const std::byte> bytes) {
    const int descriptor = ::open(temporaryPath().c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return failure(reasonOf(errno));
    }
    const auto written = ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    const int error = errno;
    ::close(descriptor);
    if (written != static_cast<ssize_t>(bytes.size())) {
        return failure(reasonOf(written < 0 ? error : ENOSPC));
    }
    return {};
}

Result<void> ClipOutput::finish() {
    return m_file ? m_file->commit() : Result<void>();
}

Error ClipOutput::failure(const std::string& reason) const {
    return Error{"cannot write " + (m_file ? nameOf(m_file->target()) : nameOf(ClipStream{m_stream})) + ": " + reason};
}

} // namespace starbloom
