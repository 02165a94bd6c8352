// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace starbloom {

/// Keeps the frames of a recording in memory, losslessly compressed.
///
/// How threads share the work: add() only puts a frame into a short queue; one thread of the store's own takes frames
/// from there in their order and compresses them. Frames come out again, in the same order, with takeFirst(). One
/// thread may add while another takes.
///
///     FrameStore store(limit);
///     ImageBuffer frame = store.blank(640, 480);
///     ...draw...
///     if (store.add(std::move(frame)) != FrameStore::Added::Kept) ++missed;
///     ...
///     while (store.takeFirst(frame)) ...write...
///     if (store.failure()) ...
class FrameStore {
public:
    enum class Added {
        Kept,
        Busy, ///< The queue is full: compressing cannot keep up. The frame is lost, the next one may be kept again.
        Full, ///< The limit is reached or memory ran out; from now on nothing is kept.
    };

    /// Frames that may wait to be compressed, at most: a hiccup of a quarter of a second, and at 1920 x 1080 66 MB.
    static constexpr std::size_t queueLength = 8;

    /// Keeps no more than `limit` bytes of frames, including those in the queue.
    explicit FrameStore(std::uint64_t limit = std::numeric_limits<std::uint64_t>::max());

    /// Forgets all frames.
    ~FrameStore();
    FrameStore(const FrameStore&) = delete;
    FrameStore& operator=(const FrameStore&) = delete;

    /// A picture to draw the next frame into, with any contents. Memory of frames that have been compressed is used
    /// again, as fresh memory costs about as much time as compressing. Empty when there is no memory.
    ImageBuffer blank(int width, int height);

    /// Appends a frame of any size; returns at once.
    Added add(ImageBuffer&& frame);

    /// Gives the oldest frame and forgets it; waits when it is still being compressed. False when there is none.
    bool takeFirst(ImageBuffer& frame);

    /// Returns when no frame waits to be compressed any more.
    void waitUntilPacked();

    /// How many frames are here, in the queue or compressed.
    std::int64_t count() const;

    /// Bytes of memory that the frames take now, and took at most.
    std::uint64_t bytes() const;
    std::uint64_t peakBytes() const;

    /// Why frames were turned away or lost, if that was for want of memory.
    std::optional<Error> failure() const;

private:
    struct Packed {
        int width = 0;
        int height = 0;
        bool raw = false; ///< Compressing would have made it larger.
        std::vector<std::uint8_t> bytes;
    };

    void work();
    Packed pack(const ImageBuffer& frame);
    void keep(Packed&& packed, ImageBuffer&& frame);
    void grow(std::uint64_t bytes);

    const std::uint64_t m_limit;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<ImageBuffer> m_queue; ///< The front one is being compressed.
    std::deque<Packed> m_packed;
    std::vector<ImageBuffer> m_spares;
    std::vector<std::uint8_t> m_scratch; ///< The worker's.
    std::uint64_t m_bytes = 0;
    std::uint64_t m_peakBytes = 0;
    std::optional<Error> m_failure;
    bool m_ending = false;
    std::thread m_worker;
};

/// How many bytes a frame takes once it is compressed.
std::uint64_t packedSize(const ImageBuffer& frame);

} // namespace starbloom
