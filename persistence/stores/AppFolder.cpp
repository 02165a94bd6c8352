// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/AppFolder.h"

#include "base/Log.h"

#include <pwd.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

/// The path of a variable, or an empty one if it is not set or not absolute.
std::filesystem::path absolutePath(const EnvironmentLookup& environment, const char* name) {
    std::filesystem::path path = environment(name).value_or("");
    return path.is_absolute() ? path : std::filesystem::path();
}

/// The home folder that the user database names, or an empty path.
std::filesystem::path homeOfUserDatabase() {
    // Entries from a directory service can be long; more than this is no home folder that could be used.
    std::vector<char> buffer(64 * 1024);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr ||
        found->pw_dir == nullptr) {
        return {};
    }
    std::filesystem::path home = found->pw_dir;
    return home.is_absolute() ? home : std::filesystem::path();
}

} // namespace

bool fileExists(const std::filesystem::path& path) {
    std::error_code ignored;
    return !path.empty() && std::filesystem::exists(path, ignored);
}

void createFolder(const std::filesystem::path& path) {
    if (fileExists(path)) {
        return;
    }
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error) {
        log(LogLevel::Warning, "persistence", "cannot make the folder " + path.string() + ": " + error.message());
    }
}

std::string getlastpath(const std::filesystem::path& path) {
    const std::filesystem::path whole = path.has_filename() ? path : path.parent_path();
    return whole.has_filename() ? whole.filename().string() : whole.string();
}

AppFolder::AppFolder(std::filesystem::path dataHome, std::string appName)
    : m_dataHome(std::move(dataHome))
    , m_appName(std::move(appName)) {}

Result<std::filesystem::path> AppFolder::dataHome(const EnvironmentLookup& environment) {
    if (auto path = absolutePath(environment, "XDG_DATA_HOME"); !path.empty()) {
        return path;
    }
    auto home = absolutePath(environment, "HOME");
    if (home.empty()) {
        home = homeOfUserDatabase();
    }
    if (home.empty()) {
        const Error error{"cannot find the folder of the user's application data: the user has no home folder"};
        log(LogLevel::Warning, "persistence", error.message);
        return error;
    }
    return home / ".local" / "share";
}

std::filesystem::path AppFolder::filePathA() const {
    return m_dataHome.empty() ? std::filesystem::path() : m_dataHome / m_appName;
}

std::filesystem::path AppFolder::filePathB() const {
    return component("Presets");
}

std::filesystem::path AppFolder::filePath0() const {
    return component("Data0.data");
}

std::filesystem::path AppFolder::filePath1() const {
    return component("Data1.data");
}

std::filesystem::path AppFolder::filePath2() const {
    return component("Data2.data");
}

std::filesystem::path AppFolder::filePath3() const {
    return component("Data3.data");
}

std::filesystem::path AppFolder::filePath4() const {
    return component("Data4.data");
}

std::filesystem::path AppFolder::filePath5() const {
    return component("package");
}

std::filesystem::path AppFolder::filePath6() const {
    return component("Data6.data");
}

std::filesystem::path AppFolder::recordingJournal() const {
    return component("Recording");
}

void AppFolder::createAppFolder() const {
    if (!fileExists(filePathA())) {
        createFolder(filePathA());
    }
}

std::filesystem::path AppFolder::component(const char* name) const {
    const auto folder = filePathA();
    return folder.empty() ? folder : folder / name;
}

} // namespace starbloom
