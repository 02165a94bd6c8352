// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/clip/BatchClipWriter.h"

#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace starbloom {

namespace {

/// The first and last of something that changed; empty while begin is not below end.
struct Span {
    int begin;
    int end;
};

/// Widens the span of columns by those in which two rows differ.
void widen(Span& columns, const std::uint8_t* before, const std::uint8_t* after, int width) {
    const auto differs = [&](int x) {
        const auto at = static_cast<std::size_t>(x) * ImageBuffer::channels;
        return std::memcmp(before + at, after + at, ImageBuffer::channels) != 0;
    };
    int left = 0;
    while (left < columns.begin && !differs(left)) {
        ++left;
    }
    int right = width;
    while (right > columns.end && !differs(right - 1)) {
        --right;
    }
    columns = {std::min(columns.begin, left), std::max(columns.end, right)};
}

ImageBuffer cut(const ImageBuffer& frame, Span columns, Span rows) {
    ImageBuffer piece(columns.end - columns.begin, rows.end - rows.begin);
    for (int y = rows.begin; y < rows.end; ++y) {
        const std::uint8_t* from = frame.row(y) + static_cast<std::size_t>(columns.begin) * ImageBuffer::channels;
        std::memcpy(piece.row(y - rows.begin), from, piece.bytesPerRow());
    }
    return piece;
}

} // namespace

BatchClipWriter::BatchClipWriter(int alignment)
    : m_alignment(alignment)
    , m_capacity(static_cast<std::size_t>(oneapi::tbb::this_task_arena::max_concurrency())) {}

FramePiece BatchClipWriter::changedPiece(const ImageBuffer& frame) const {
    if (m_previous.bytes().empty()) {
        return {frame};
    }
    Span columns{frame.width(), 0};
    Span rows{frame.height(), 0};
    for (int y = 0; y < frame.height(); ++y) {
        if (std::memcmp(m_previous.row(y), frame.row(y), frame.bytesPerRow()) != 0) {
            widen(columns, m_previous.row(y), frame.row(y), frame.width());
            rows = {std::min(rows.begin, y), y + 1};
        }
    }
    if (rows.begin >= rows.end) { // A frame needs some pixel, if only to last.
        rows = columns = {0, 1};
    }
    rows.begin -= rows.begin % m_alignment;
    columns.begin -= columns.begin % m_alignment;
    return {cut(frame, columns, rows), columns.begin, rows.begin};
}

Result<void> BatchClipWriter::add(const ImageBuffer& frame) {
    m_waiting.push_back(changedPiece(frame));
    m_previous = frame;
    return m_waiting.size() < m_capacity ? Result<void>() : flush();
}

Result<void> BatchClipWriter::flush() {
    namespace tbb = oneapi::tbb;
    std::vector<std::optional<Result<Bytes>>> encoded(m_waiting.size());
    // Without the isolation a thread that waits here could begin with another task of its caller.
    tbb::this_task_arena::isolate([&] {
        tbb::parallel_for(std::size_t{0}, m_waiting.size(), [&](std::size_t i) { encoded[i] = encode(m_waiting[i]); });
    });
    for (std::size_t i = 0; i < m_waiting.size(); ++i) {
        if (!*encoded[i]) {
            return encoded[i]->error();
        }
        if (auto written = write(m_waiting[i], encoded[i]->value()); !written) {
            return written;
        }
    }
    m_waiting.clear();
    return {};
}

Result<void> BatchClipWriter::finish() {
    auto flushed = flush();
    return flushed ? close() : flushed;
}

} // namespace starbloom
