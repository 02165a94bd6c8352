// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>

#include <filesystem>
#include <functional>

namespace starbloom {

/// Takes the files that are dropped onto a DropView. GUI thread.
class DropReceiver {
public:
    virtual ~DropReceiver() = default;

    /// Finds out the size of the picture in a file, in pixels; 0 by 0 for one that cannot be read. The answer comes
    /// once, on the same thread, before or after this returns.
    virtual void getImageSize(const std::filesystem::path& path, std::function<void(const QSize& size)> answer) = 0;

    /// Opens a picture. Whether its type is one that can be opened.
    virtual bool openImage2(const std::filesystem::path& path, bool restoreMenus) = 0;
};

/// Whether a picture is large enough to be opened: more than 2 pixels in both directions.
constexpr bool isLargeEnough(const QSize& size) {
    return size.width() > 2 && size.height() > 2;
}

} // namespace starbloom
