// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

namespace starbloom {

/// A new empty folder for one test, removed with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }

    std::filesystem::path operator/(const std::string& name) const { return m_path / name; }

    /// How many files and folders lie in it, hidden ones too: leftovers show up here.
    int entryCount() const { return countIn(m_path); }

    /// The same of any folder.
    static int countIn(const std::filesystem::path& folder);

private:
    std::filesystem::path m_path;
};

/// All bytes of a file; empty when it cannot be read.
std::string readFile(const std::filesystem::path& path);

} // namespace starbloom
