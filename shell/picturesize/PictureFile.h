// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace starbloom {

/// A file whose size as a picture is asked for: open for reading, at its beginning, and certainly a regular file.
///
/// Whatever else may bear a picture's name is not opened at all: a pipe would wait for a writer, a device never ends.
/// Closes the file when it goes. One thread.
class PictureFile {
public:
    /// Nothing if there is no such file, it may not be read, or it is no regular file.
    static std::optional<PictureFile> open(const std::string& path);

    PictureFile(PictureFile&& other) noexcept;
    ~PictureFile();

    PictureFile& operator=(PictureFile&&) = delete;

    int descriptor() const { return m_descriptor; }

    /// Another name of the open file, for libraries that want one. Unlike the path it cannot come to mean another file.
    std::string path() const;

    /// The file's first bytes, as many as tell all types apart; fewer when the file is shorter.
    std::string_view head() const { return {m_head.data(), m_headSize}; }

private:
    explicit PictureFile(int descriptor);

    int m_descriptor;
    std::size_t m_headSize = 0;
    std::array<char, 1024> m_head{}; ///< A document may have its mark anywhere in its first 1,024 bytes.
};

} // namespace starbloom
