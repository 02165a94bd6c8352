// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/SqliteDatabase.h"

#include "persistence/stores/SqliteLibrary.h"

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

/// For what comes after a database was opened: then the library is there.
const SqliteLibrary& sqlite() {
    return *SqliteLibrary::loaded();
}

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
    sqlite().bindText(m_handle.get(), parameter, text.c_str(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

int SqliteStatement::step() {
    return sqlite().step(m_handle.get()) & 0xFF;
}

int SqliteStatement::columnCount() const {
    return sqlite().columnCount(m_handle.get());
}

std::optional<std::string> SqliteStatement::text(int column) const {
    // The text has to be asked for before its length: asking converts it, which changes the length.
    const auto* bytes = reinterpret_cast<const char*>(sqlite().columnText(m_handle.get(), column));
    const auto length = static_cast<std::size_t>(sqlite().columnBytes(m_handle.get(), column));
    if (bytes == nullptr || length > SqliteDatabase::longestValue) {
        return std::nullopt;
    }
    return std::string(bytes);
}

void SqliteStatement::finalise(sqlite3_stmt* handle) {
    sqlite().finalise(handle);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file)
    : m_handle(nullptr, &close)
    , m_openFailure(whyNotRegular(file)) {
    if (!m_openFailure.empty()) {
        return;
    }
    // A path is a path: one that starts with "file:" must not be taken for an address, so it is made absolute.
    std::error_code ignored;
    const auto absolute = std::filesystem::absolute(file, ignored);
    open(absolute.c_str(), SQLITE_OPEN_READWRITE);
}

SqliteDatabase::SqliteDatabase()
    : m_handle(nullptr, &close) {
    open(":memory:", SQLITE_OPEN_READWRITE | SQLITE_OPEN_MEMORY);
}

void SqliteDatabase::open(const char* name, int flags) {
    if (SqliteLibrary::loaded() == nullptr) {
        m_openFailure = "the library of databases is missing";
        return;
    }
    sqlite3* handle = nullptr;
    const int opened = sqlite().open(name, &handle, flags, nullptr);
    m_handle.reset(handle);
    if (opened != SQLITE_OK) {
        m_openFailure = handle != nullptr ? sqlite().errorMessage(handle) : "out of memory";
        m_handle.reset();
        return;
    }
    limit();
}

SqliteStatement SqliteDatabase::prepare(const std::string& statement) {
    sqlite3_stmt* handle = nullptr;
    sqlite().prepare(m_handle.get(), statement.c_str(), -1, &handle, nullptr);
    return SqliteStatement(handle);
}

void SqliteDatabase::doNotWait() {
    sqlite().setBusyTimeout(m_handle.get(), 0);
}

bool SqliteDatabase::execute(const std::string& statement) {
    return sqlite().execute(m_handle.get(), statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::vector<std::byte> SqliteDatabase::image() const {
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, void (*)(void*)> bytes(sqlite().serialise(m_handle.get(), "main", &size, 0),
                                                                sqlite().release);
    const auto* begin = reinterpret_cast<const std::byte*>(bytes.get());
    return begin != nullptr ? std::vector<std::byte>(begin, begin + size) : std::vector<std::byte>();
}

int SqliteDatabase::code() const {
    return m_handle ? sqlite().errorCode(m_handle.get()) & 0xFF : SQLITE_CANTOPEN;
}

std::string SqliteDatabase::message() const {
    return m_handle ? sqlite().errorMessage(m_handle.get()) : m_openFailure;
}

void SqliteDatabase::close(sqlite3* handle) {
    sqlite().close(handle);
}

void SqliteDatabase::limit() {
    sqlite3* handle = m_handle.get();
    sqlite().setBusyTimeout(handle, busyMilliseconds);
    sqlite().setLimit(handle, SQLITE_LIMIT_LENGTH, largestObject);
    sqlite().configure(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite().configure(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite().configure(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    // Without this, a damaged page can send SQLite past its end, and the same file reads now this way, now that.
    execute("PRAGMA cell_size_check=ON");
    sqlite().setProgressHandler(handle, mostSteps, &giveUp, nullptr);
}

} // namespace starbloom
