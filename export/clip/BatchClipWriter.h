// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/clip/ClipWriter.h"

#include <cstddef>
#include <vector>

namespace starbloom {

/// The part of a frame that differs from the frame before, and where it lies.
struct FramePiece {
    ImageBuffer picture;
    int x = 0;
    int y = 0;
};

/// A writer of pictures that are encoded one by one, so several at once: as many as the caller's oneTBB arena has
/// threads. add() keeps copies until there are that many, then encodes them together and writes them in order.
class BatchClipWriter : public ClipWriter {
public:
    Result<void> add(const ImageBuffer& frame) final;
    Result<void> finish() final;

protected:
    using Bytes = std::vector<std::byte>;

    /// `alignment`: of the places of pieces in both directions.
    explicit BatchClipWriter(int alignment);

    /// Called from any of the threads.
    virtual Result<Bytes> encode(FramePiece& piece) const = 0;

    /// Called in order of frames.
    virtual Result<void> write(const FramePiece& piece, const Bytes& encoded) = 0;

    /// Called after the last frame.
    virtual Result<void> close() = 0;

private:
    FramePiece changedPiece(const ImageBuffer& frame) const;
    Result<void> flush();

    int m_alignment;
    std::size_t m_capacity;
    ImageBuffer m_previous;
    std::vector<FramePiece> m_waiting;
};

} // namespace starbloom
