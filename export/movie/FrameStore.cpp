// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/FrameStore.h"

#include <lz4.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace starbloom {

namespace {

/// What LZ4 can take at once: enough for any frame of a movie but the very largest, which stay as they are.
constexpr std::size_t mostForLz4 = LZ4_MAX_INPUT_SIZE;

/// Compresses into `scratch`, which grows as needed. 0 when the frame would not become smaller.
std::size_t compress(std::span<const std::uint8_t> bytes, std::vector<std::uint8_t>& scratch) {
    if (bytes.empty() || bytes.size() > mostForLz4) {
        return 0;
    }
    // With less room than the frame itself takes, LZ4 gives up as soon as it cannot gain anything.
    if (scratch.size() < bytes.size()) {
        scratch.resize(bytes.size());
    }
    const int size =
        LZ4_compress_default(reinterpret_cast<const char*>(bytes.data()), reinterpret_cast<char*>(scratch.data()),
                             static_cast<int>(bytes.size()), static_cast<int>(bytes.size()) - 1);
    return static_cast<std::size_t>(std::max(size, 0));
}

} // namespace

FrameStore::FrameStore(std::uint64_t limit)
    : m_limit(limit) {
    m_spares.reserve(queueLength);
    m_worker = std::thread([this] { work(); });
}

FrameStore::~FrameStore() {
    {
        const std::scoped_lock lock(m_mutex);
        m_ending = true;
        m_changed.notify_all();
    }
    m_worker.join();
}

ImageBuffer FrameStore::blank(int width, int height) {
    {
        const std::scoped_lock lock(m_mutex);
        while (!m_spares.empty()) {
            ImageBuffer spare = std::move(m_spares.back());
            m_spares.pop_back();
            if (spare.width() == width && spare.height() == height) {
                return spare;
            }
        }
    }
    try {
        return {width, height};
    } catch (const std::bad_alloc&) {
        return {};
    }
}

FrameStore::Added FrameStore::add(ImageBuffer&& frame) {
    const std::scoped_lock lock(m_mutex);
    if (m_failure) {
        return Added::Full;
    }
    if (m_queue.size() >= queueLength) {
        return Added::Busy;
    }
    const std::uint64_t size = frame.bytes().size();
    if (size > m_limit || m_bytes > m_limit - size) {
        m_failure = Error{"the frames of the recording need more memory than is free"};
        return Added::Full;
    }
    try {
        m_queue.push_back(std::move(frame));
    } catch (const std::bad_alloc&) {
        m_failure = Error{"there is not enough memory for the frames of the recording"};
        return Added::Full;
    }
    grow(size);
    m_changed.notify_all();
    return Added::Kept;
}

void FrameStore::grow(std::uint64_t bytes) {
    m_bytes += bytes;
    m_peakBytes = std::max(m_peakBytes, m_bytes);
}

void FrameStore::work() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_queue.empty(); });
        if (m_ending) {
            return;
        }
        // Adding to a deque moves no element, and only this thread takes one away.
        ImageBuffer& frame = m_queue.front();
        lock.unlock();
        Packed packed;
        std::optional<Error> failure;
        try {
            packed = pack(frame);
        } catch (const std::bad_alloc&) {
            failure = Error{"there is not enough memory to keep a frame of the recording"};
        }
        lock.lock();
        if (failure) {
            m_failure = std::move(failure);
            m_bytes -= frame.bytes().size();
            m_queue.pop_front();
        } else {
            keep(std::move(packed), std::move(frame));
        }
        m_changed.notify_all();
    }
}

FrameStore::Packed FrameStore::pack(const ImageBuffer& frame) {
    const std::size_t size = compress(frame.bytes(), m_scratch);
    const auto bytes = size > 0 ? std::span<const std::uint8_t>(m_scratch).first(size) : frame.bytes();
    return {frame.width(), frame.height(), size == 0, {bytes.begin(), bytes.end()}};
}

/// The frame at the front of the queue becomes what it was compressed to.
void FrameStore::keep(Packed&& packed, ImageBuffer&& frame) {
    m_bytes -= frame.bytes().size();
    const std::uint64_t size = packed.bytes.size();
    try {
        m_packed.push_back(std::move(packed));
        grow(size);
        if (m_spares.size() < queueLength) {
            m_spares.push_back(std::move(frame));
        }
    } catch (const std::bad_alloc&) {
        m_failure = Error{"there is not enough memory to keep a frame of the recording"};
    }
    m_queue.pop_front();
}

bool FrameStore::takeFirst(ImageBuffer& frame) {
    Packed packed;
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_packed.empty() || m_queue.empty(); });
        if (m_packed.empty()) {
            return false;
        }
        packed = std::move(m_packed.front());
        m_packed.pop_front();
        m_bytes -= packed.bytes.size();
    }
    // A picture that was moved from still tells its old size.
    if (frame.width() != packed.width || frame.height() != packed.height || frame.bytes().empty()) {
        frame = ImageBuffer(packed.width, packed.height);
    }
    const auto target = frame.bytes();
    if (packed.raw) {
        std::ranges::copy(packed.bytes, target.begin());
        return true;
    }
    LZ4_decompress_safe(reinterpret_cast<const char*>(packed.bytes.data()), reinterpret_cast<char*>(target.data()),
                        static_cast<int>(packed.bytes.size()), static_cast<int>(target.size()));
    return true;
}

void FrameStore::waitUntilPacked() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_queue.empty(); });
}

std::int64_t FrameStore::count() const {
    const std::scoped_lock lock(m_mutex);
    return static_cast<std::int64_t>(m_queue.size() + m_packed.size());
}

std::uint64_t FrameStore::bytes() const {
    const std::scoped_lock lock(m_mutex);
    return m_bytes;
}

std::uint64_t FrameStore::peakBytes() const {
    const std::scoped_lock lock(m_mutex);
    return m_peakBytes;
}

std::optional<Error> FrameStore::failure() const {
    const std::scoped_lock lock(m_mutex);
    return m_failure;
}

std::uint64_t packedSize(const ImageBuffer& frame) {
    std::vector<std::uint8_t> scratch;
    const std::size_t size = compress(frame.bytes(), scratch);
    return size > 0 ? size : frame.bytes().size();
}

} // namespace starbloom
