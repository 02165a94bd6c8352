// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QUrl>

#include <filesystem>

namespace starbloom {

/// What the desktop opens for the user, outside this program. A test puts its own in place.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// Shows a file in its folder, selected where the file manager can do that.
    virtual void showInFolder(const std::filesystem::path& file) = 0;

    /// Opens a file or a page with the program that the user has for it.
    virtual void open(const QUrl& url) = 0;
};

/// The desktop's own file manager, by the interface org.freedesktop.FileManager1 of the session bus; where none answers
/// to it, the folder is opened. Returns at once. GUI thread.
class DesktopFileManager final : public FileManager {
public:
    void showInFolder(const std::filesystem::path& file) override;
    void open(const QUrl& url) override;
};

/// A file's address. A name that is no UTF-8 survives.
QUrl urlOf(const std::filesystem::path& file);

} // namespace starbloom
