// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace starbloom {

// The little of SQLite's interface that the stores use, with owners for its two handles. Codes are SQLite's primary
// result codes. One thread at a time.

/// A prepared statement, finalised at its end. It must not outlive its database.
class SqliteStatement {
public:
    explicit SqliteStatement(sqlite3_stmt* handle)
        : m_handle(handle, &finalise) {}

    /// False when the text could not be prepared; then nothing else may be called.
    explicit operator bool() const { return m_handle != nullptr; }

    /// Binds a copy of the text. Parameters count from 1.
    void bind(int parameter, const std::string& text);

    /// Moves on by one row, and gives SQLITE_ROW, SQLITE_DONE or the code of an error.
    int step();

    int columnCount() const;

    /// A column of the current row as text, counting from 0: the bytes up to the first zero byte, whatever type the
    /// row holds. Nothing for NULL, and for more bytes than a store's value may have.
    std::optional<std::string> text(int column) const;

private:
    static void finalise(sqlite3_stmt* handle);

    std::unique_ptr<sqlite3_stmt, void (*)(sqlite3_stmt*)> m_handle;
};

/// One connection, closed at its end.
///
/// The file is not trusted, so views and triggers are off, functions in its schema are kept harmless, and a statement
/// that runs on and on is interrupted.
class SqliteDatabase {
public:
    /// Values longer than this, in bytes, are neither read nor written. Paths are the longest values and end at 4096.
    static constexpr std::size_t longestValue = 64 * 1024;

    /// Opens a file that exists: one that is missing is not made. Only a regular file is opened, as a pipe or a device
    /// could keep its reader waiting. If the file cannot be opened, message() tells why.
    explicit SqliteDatabase(const std::filesystem::path& file);

    /// A new database in memory, which is gone with the object.
    SqliteDatabase();

    explicit operator bool() const { return m_handle != nullptr; }

    /// A file that another program has locked fails at once.
    void doNotWait();

    /// Prepares the first statement of the text.
    SqliteStatement prepare(const std::string& statement);

    /// Runs a statement to its end, without its rows. False on failure.
    bool execute(const std::string& statement);

    /// What a file with this content would hold; nothing if there is no memory for it.
    std::vector<std::byte> image() const;

    /// The primary code, and the text, of the last failure.
    int code() const;
    std::string message() const;

private:
    static void close(sqlite3* handle);
    void open(const char* name, int flags);
    void limit();

    std::unique_ptr<sqlite3, void (*)(sqlite3*)> m_handle;
    std::string m_openFailure;
};

} // namespace starbloom
