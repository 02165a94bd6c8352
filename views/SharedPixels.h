// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/LitArea.h"
#include "engine/raster/RasterRenderer.h"

#include <QSize>

#include <cstdint>
#include <memory>
#include <span>

struct xcb_connection_t;

namespace starbloom {

/// Pixels in memory that the application's X11 server reads them from (MIT-SHM), for a window of the application's.
///
/// One thread at a time, any.
class SharedPixels {
public:
    /// Nothing when the server has no such memory, is on another machine, or has other pixels.
    static std::unique_ptr<SharedPixels> create(std::uint32_t window, const QSize& size);
    ~SharedPixels();
    SharedPixels(const SharedPixels&) = delete;
    SharedPixels& operator=(const SharedPixels&) = delete;

    bool isFor(std::uint32_t window, const QSize& size) const {
        return m_window == window && m_target.width == size.width() && m_target.height == size.height();
    }

    const RasterTarget& target() const { return m_target; }

    /// Has the server copy rectangles of them to the window, in which the picture begins at that place.
    void show(std::span<const PixelRect> rects, int left, int top) const;

    /// Waits until the server has read what it was told to show.
    void waitUntilShown() const;

private:
    SharedPixels() = default;

    xcb_connection_t* m_connection = nullptr;
    std::uint32_t m_window = 0;
    std::uint32_t m_segment = 0; ///< As the server knows the memory.
    std::uint32_t m_context = 0;
    std::uint8_t m_depth = 0;
    RasterTarget m_target;
};

} // namespace starbloom
