// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/SqliteDatabase.h"

#include <sqlite3.h>
#include <system_error>

namespace starbloom {

namespace {

/// How long an operation waits for another program that has locked the file. Stores are used from the thread of the
/// windows, so longer would be felt; another Starbloom holds its lock for the time of one update.
constexpr int busyMilliseconds = 250;

/// No value of SQLite may be larger than this, in bytes. It bounds the memory that a hostile file can ask for, and lies
/// far above longestValue because a larger value ends the reading of its table, where a long one only loses its row.
constexpr int largestObject = 16 * 1024 * 1024;

/// Steps of SQLite's machine after which a statement is given up. Reading the largest of the stores takes about a
/// thousand.
constexpr int mostSteps = 20'000'000;

int giveUp(void* /*unused*/) {
    return 1;
}

std::string whyNotRegular(const std::filesystem::path& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (std::filesystem::is_regular_file(status)) {
        return "";
    }
    return error ? error.message() : "not a regular file";
}

} // namespace

void SqliteStatement::bind(int parameter, const std::string& text) {
    sqlite3_bind_text64(m_handle.get(), parameter, text.c_str(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

int SqliteStatement::step() {
    return sqlite3_step(m_handle.get()) & 0xFF;
}

int SqliteStatement::columnCount() const {
    return sqlite3_column_count(m_handle.get());
}

std::optional<std::string> SqliteStatement::text(int column) const {
    // The text has to be asked for before its length: asking converts it, which changes the length.
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_handle.get(), column));
    const auto length = static_cast<std::size_t>(sqlite3_column_bytes(m_handle.get(), column));
    if (bytes == nullptr || length > SqliteDatabase::longestValue) {
        return std::nullopt;
    }
    return std::string(bytes);
}

void SqliteStatement::finalise(sqlite3_stmt* handle) {
    sqlite3_finalize(handle);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file)
    : m_handle(nullptr, &close)
    , m_openFailure(whyNotRegular(file)) {
    if (!m_openFailure.empty()) {
        return;
    }
    sqlite3* handle = nullptr;
    // A path is a path: one that starts with "file:" must not be taken for an address, so it is made absolute.
    std::error_code ignored;
    const auto absolute = std::filesystem::absolute(file, ignored);
    const int opened = sqlite3_open_v2(absolute.c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
    m_handle.reset(handle);
    if (opened != SQLITE_OK) {
        m_openFailure = handle != nullptr ? sqlite3_errmsg(handle) : "out of memory";
        m_handle.reset();
        return;
    }
    limit();
}

SqliteStatement SqliteDatabase::prepare(const std::string& statement) {
    sqlite3_stmt* handle = nullptr;
    sqlite3_prepare_v2(m_handle.get(), statement.c_str(), -1, &handle, nullptr);
    return SqliteStatement(handle);
}

bool SqliteDatabase::execute(const std::string& statement) {
    return sqlite3_exec(m_handle.get(), statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

int SqliteDatabase::code() const {
    return m_handle ? sqlite3_errcode(m_handle.get()) & 0xFF : SQLITE_CANTOPEN;
}

std::string SqliteDatabase::message() const {
    return m_handle ? sqlite3_errmsg(m_handle.get()) : m_openFailure;
}

void SqliteDatabase::close(sqlite3* handle) {
    sqlite3_close(handle);
}

void SqliteDatabase::limit() {
    sqlite3* handle = m_handle.get();
    sqlite3_busy_timeout(handle, busyMilliseconds);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, largestObject);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    // Without this, a damaged page can send SQLite past its end, and the same file reads now this way, now that.
    execute("PRAGMA cell_size_check=ON");
    sqlite3_progress_handler(handle, mostSteps, &giveUp, nullptr);
}

} // namespace starbloom
