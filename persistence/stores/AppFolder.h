// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace starbloom {

/// Looks up one variable of the environment; nothing when it is not set. A function and not getenv() itself, so that a
/// test needs no environment of its own.
using EnvironmentLookup = std::function<std::optional<std::string>(const char* name)>;

/// Whether anything, file or folder, exists at the path, following symbolic links. The empty path names nothing, so it
/// is false without asking the file system. What cannot be looked at counts as missing.
bool fileExists(const std::filesystem::path& path);

/// Makes the folder, and those above it, if nothing exists at the path. A failure is logged and otherwise ignored: the
/// program then runs on its built-in defaults.
void createFolder(const std::filesystem::path& path);

/// The last component of a path, as a menu item shows it: "Shows" for "/home/me/Shows" and for "/home/me/Shows/", "/"
/// for the root, "" for the empty path. The bytes are the file system's own and need not be UTF-8.
std::string getlastpath(const std::filesystem::path& path);

/// The folder in which everything lies that the program keeps between runs, and the name of each file in it.
///
/// It holds two names and no handle; copying is cheap, and any number of threads may ask one at once. Paths are
/// composed afresh on each call and nothing is looked up until a file is used. Names that are no UTF-8 survive.
class AppFolder {
public:
    /// dataHome is the folder of the user's application data, an absolute path. With an empty one, for a user who has
    /// no home, every path is empty: no file then exists and none is made, least of all in the working directory.
    explicit AppFolder(std::filesystem::path dataHome, std::string appName = "Starbloom");

    /// Where the user's application data lies: $XDG_DATA_HOME, else .local/share in $HOME, else the same in the home
    /// that the user database names. Only absolute paths count, as the desktop's base-directory rules have it. Fails,
    /// and logs it, when the user has no home at all.
    static Result<std::filesystem::path> dataHome(const EnvironmentLookup& environment);

    /// The folder itself.
    std::filesystem::path filePathA() const;
    /// "Presets". Reserved; nothing uses it.
    std::filesystem::path filePathB() const;
    /// "Data0.data": the store of window frames.
    std::filesystem::path filePath0() const;
    /// "Data1.data": the store of preferences.
    std::filesystem::path filePath1() const;
    /// "Data2.data": the store of the preferences window's check boxes.
    std::filesystem::path filePath2() const;
    /// "Data3.data": the record of the shared folder.
    std::filesystem::path filePath3() const;
    /// "Data4.data": the settings of picture export.
    std::filesystem::path filePath4() const;
    /// "package". Reserved; nothing uses it, and there is no data file of this number.
    std::filesystem::path filePath5() const;
    /// "Data6.data": the background colour.
    std::filesystem::path filePath6() const;

    /// "Recording": names the movie that is being written, for a run that comes after one that was killed.
    std::filesystem::path recordingJournal() const;

    /// Makes the folder if it does not exist. Runs once at launch, before the first file is used; later operations take
    /// the folder for granted.
    void createAppFolder() const;

private:
    std::filesystem::path component(const char* name) const;

    std::filesystem::path m_dataHome;
    std::string m_appName;
};

} // namespace starbloom
