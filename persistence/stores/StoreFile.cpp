// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/StoreFile.h"

#include "base/PendingFile.h"
#include "persistence/stores/SqliteDatabase.h"

#include <sqlite3.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <string_view>
#include <sys/types.h>
#include <system_error>

namespace starbloom {

namespace {

/// What SQLite writes beside a database. A rollback journal or a write-ahead log without its database is a danger: it
/// would be played into whatever file takes the name.
constexpr std::array journalSuffixes{"-journal", "-wal", "-shm"};

constexpr int mostDamagedFiles = 100;

/// No store takes this long to write, however slow the disk.
constexpr auto oldestTemporary = std::chrono::hours(1);

std::filesystem::path withSuffix(std::filesystem::path file, std::string_view suffix) {
    return file.concat(suffix);
}

/// Puts key and value into the places of an INSERT template, as SQL text.
std::string insertStatement(const std::string& pattern, const StoreRow& row) {
    static constexpr std::string_view place = "%@";
    std::string statement = pattern;
    std::size_t from = 0;
    for (const auto* text : {&row.key, &row.value}) {
        from = statement.find(place, from);
        statement.replace(from, place.size(), *text);
        from += text->size();
    }
    return statement;
}

bool insertDefaults(SqliteDatabase& database, const StoreDefinition& definition) {
    for (const auto& row : definition.rows) {
        if (!database.execute(insertStatement(definition.insert, row))) {
            return false;
        }
    }
    return true;
}

/// Values from a damaged file can hold anything, so they are bound and never become a part of a statement.
bool updateValues(SqliteDatabase& database, const StoreDefinition& definition, const StoreValues& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!values[i] || *values[i] == definition.rows[i].value) {
            continue;
        }
        auto statement = database.prepare(definition.update);
        if (!statement) {
            return false;
        }
        statement.bind(1, *values[i]);
        statement.bind(2, definition.rows[i].key);
        if (statement.step() != SQLITE_DONE) {
            return false;
        }
    }
    return true;
}

/// A whole new store, still under its temporary name.
Result<PendingFile> pendingStore(const std::filesystem::path& file, std::span<const std::byte> image) {
    auto pending = PendingFile::create(file);
    if (!pending) {
        return pending;
    }
    if (auto written = pending.value().write(image); !written) {
        return written.error();
    }
    return pending;
}

Result<std::filesystem::path> moveAside(const std::filesystem::path& file) {
    for (int number = 1; number <= mostDamagedFiles; ++number) {
        const auto aside = withSuffix(file, ".damaged-" + std::to_string(number));
        std::error_code error;
        if (std::filesystem::exists(std::filesystem::symlink_status(aside, error))) {
            continue;
        }
        // The journals go first: killed in between, the file stays in its place without them, and is moved next time.
        for (const char* suffix : journalSuffixes) {
            std::filesystem::rename(withSuffix(file, suffix), withSuffix(aside, suffix), error);
        }
        std::filesystem::rename(file, aside, error);
        if (error) {
            return Error{"cannot rename " + file.string() + ": " + error.message()};
        }
        return aside;
    }
    return Error{"cannot rename " + file.string() + ": there are too many damaged files beside it"};
}

/// The process number in the name of a PendingFile's temporary, ".starbloom.<process>-<attempt>.part".
std::optional<pid_t> processOfTemporary(const std::string& name) {
    static constexpr std::string_view start = ".starbloom.";
    static constexpr std::string_view end = ".part";
    if (!name.starts_with(start) || !name.ends_with(end)) {
        return std::nullopt;
    }
    pid_t process = 0;
    const auto parsed = std::from_chars(name.data() + start.size(), name.data() + name.size(), process);
    return parsed.ec == std::errc() && *parsed.ptr == '-' && process > 0 ? std::optional(process) : std::nullopt;
}

bool isStale(const std::filesystem::path& temporary, pid_t process) {
    if (::kill(process, 0) != 0 && errno == ESRCH) {
        return true;
    }
    std::error_code error;
    const auto written = std::filesystem::last_write_time(temporary, error);
    return !error && std::filesystem::file_time_type::clock::now() - written > oldestTemporary;
}

} // namespace

Result<std::vector<std::byte>> storeImage(const StoreDefinition& definition, const StoreValues& values) {
    // In memory, a row costs no access to the file system.
    SqliteDatabase database;
    if (database && database.execute(definition.create) && insertDefaults(database, definition) &&
        updateValues(database, definition, values)) {
        if (auto image = database.image(); !image.empty()) {
            return image;
        }
    }
    return Error{"cannot make a new store: " + database.message()};
}

Result<void> createStoreFile(const std::filesystem::path& file, std::span<const std::byte> image) {
    auto pending = pendingStore(file, image);
    if (!pending) {
        return pending.error();
    }
    for (const char* suffix : journalSuffixes) {
        std::error_code ignored;
        std::filesystem::remove(withSuffix(file, suffix), ignored);
    }
    return pending.value().commit();
}

Result<std::filesystem::path> replaceStoreFile(const std::filesystem::path& file, const StoreDefinition& definition,
                                               const StoreValues& values) {
    const auto image = storeImage(definition, values);
    if (!image) {
        return image.error();
    }
    auto pending = pendingStore(file, image.value());
    if (!pending) {
        return pending.error();
    }
    auto aside = moveAside(file);
    if (!aside) {
        return aside;
    }
    if (auto committed = pending.value().commit(); !committed) {
        return committed.error();
    }
    return aside;
}

void removeStaleTemporaries(const std::filesystem::path& folder) {
    std::error_code error;
    std::vector<std::filesystem::path> stale;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const auto process = processOfTemporary(entry->path().filename().string());
        if (process && isStale(entry->path(), *process)) {
            stale.push_back(entry->path());
        }
    }
    for (const auto& path : stale) {
        std::filesystem::remove(path, error);
    }
}

} // namespace starbloom
