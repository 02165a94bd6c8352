// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/KeyValueStore.h"

#include "base/Log.h"
#include "persistence/stores/AppFolder.h"
#include "persistence/stores/NumberText.h"
#include "persistence/stores/SqliteDatabase.h"

#include <sys/stat.h>

#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <system_error>
#include <utility>

namespace starbloom {

namespace {

/// Which file it is, and when it was last written to.
struct FileState {
    dev_t device;
    ino_t inode;
    off_t size;
    std::time_t seconds;
    long nanoseconds;

    bool operator==(const FileState&) const = default;
};

constexpr int keyColumn = 1;
constexpr int valueColumn = 2;

/// Rows after which a table is not one of ours; it keeps a hostile file from holding up the launch.
constexpr int mostRows = 10'000;

/// Whether an error tells about the content of the file, which stays wrong, and not about the moment. SQLITE_ERROR is a
/// missing table or column. The last three are how a hostile file ends at the limits set for it; a machine that really
/// is out of memory cannot make the new store either, and the old one then stays.
bool isDamage(int code) {
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_ERROR || code == SQLITE_INTERRUPT ||
           code == SQLITE_TOOBIG || code == SQLITE_NOMEM;
}

/// The position of a key among the default rows.
std::optional<std::size_t> positionOf(const StoreDefinition& definition, const std::string& key) {
    const auto& rows = definition.rows;
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const StoreRow& each) { return each.key == key; });
    return row == rows.end() ? std::nullopt : std::optional(static_cast<std::size_t>(row - rows.begin()));
}

/// The whole number that a PRAGMA answers with; 0 if it does not.
std::uintmax_t answer(SqliteDatabase& database, const char* pragma) {
    auto statement = database.prepare(pragma);
    if (!statement || statement.step() != SQLITE_ROW) {
        return 0;
    }
    return static_cast<std::uintmax_t>(integerValue(statement.text(0).value_or("0")));
}

/// Whether the end of the file is cut off. SQLite takes the missing part of its last page for zeros, without a word.
bool endsEarly(SqliteDatabase& database, const std::filesystem::path& file) {
    std::error_code error;
    if (fileExists(std::filesystem::path(file).concat("-wal"))) {
        return false; // pages can still be in the log
    }
    const auto pages = answer(database, "PRAGMA page_count");
    const auto size = std::filesystem::file_size(file, error);
    return !error && size < pages * answer(database, "PRAGMA page_size");
}

/// Nothing while there is a journal, where changes may stand that the file does not show, or for a file that was
/// written to just now: the file system's clock is coarse, and a second change could carry the same time.
std::optional<FileState> stateOf(const std::filesystem::path& file) {
    for (const char* journal : {"-wal", "-journal"}) {
        if (fileExists(std::filesystem::path(file).concat(journal))) {
            return std::nullopt;
        }
    }

    struct stat state {};

    if (::stat(file.c_str(), &state) != 0 || std::time(nullptr) - state.st_mtim.tv_sec < 2) {
        return std::nullopt;
    }
    return FileState{state.st_dev, state.st_ino, state.st_size, state.st_mtim.tv_sec, state.st_mtim.tv_nsec};
}

/// Takes the rows that the statement still has into values, and gives the code that ended it.
int takeRows(SqliteStatement& statement, const StoreDefinition& definition, StoreValues& values) {
    std::vector<bool> seen(values.size());
    int code = SQLITE_ROW;
    for (int count = 0; count < mostRows; ++count) {
        code = statement.step();
        if (code != SQLITE_ROW) {
            return code;
        }
        const auto key = statement.text(keyColumn);
        const auto position = key ? positionOf(definition, *key) : std::nullopt;
        if (position && !seen[*position]) {
            seen[*position] = true;
            values[*position] = statement.text(valueColumn);
        }
    }
    return SQLITE_DONE;
}

} // namespace

/// What one attempt to read the file gave.
struct KeyValueStore::Reading {
    /// Why the reading ended: SQLITE_DONE if there was no error.
    int code = SQLITE_DONE;
    std::string reason;
    StoreValues values;
    std::optional<FileState> file; ///< As it was before.

    bool complete() const { return code == SQLITE_DONE; }

    std::ptrdiff_t missing() const { return std::count(values.begin(), values.end(), std::nullopt); }

    bool hasValues() const { return missing() < std::ssize(values); }
};

KeyValueStore::KeyValueStore(std::filesystem::path file, const StoreDefinition& definition)
    : m_file(std::move(file))
    , m_definition(definition) {}

void KeyValueStore::prepare() {
    if (fileExists(m_file)) {
        // A journal is for openCreate(), which may change the file.
        if (stateOf(m_file)) {
            keep(read(Effort::WithoutWaiting));
        }
    } else if (auto image = storeImage(m_definition)) {
        m_image = std::move(image.value());
    }
}

void KeyValueStore::openCreate() {
    removeStaleTemporaries(m_file.parent_path());
    if (!fileExists(m_file)) {
        create();
        return;
    }
    if (keptReading() != nullptr) {
        return;
    }
    Reading reading = readThoroughly();
    if (isDamage(reading.code)) {
        replaceDamaged(reading);
    } else {
        keep(std::move(reading));
    }
}

void KeyValueStore::keep(Reading reading) {
    if (reading.complete() && reading.file) {
        m_kept = std::make_shared<const Reading>(std::move(reading));
    }
}

void KeyValueStore::create() {
    using Image = Result<std::vector<std::byte>>;
    const Image image = m_image.empty() ? storeImage(m_definition) : Image(std::exchange(m_image, {}));
    const Result<void> created = image ? createStoreFile(m_file, image.value()) : image.error();
    if (!created) {
        log(LogLevel::Warning, "persistence", created.error().message);
    }
}

std::shared_ptr<const KeyValueStore::Reading> KeyValueStore::keptReading() const {
    return m_kept != nullptr && stateOf(m_file) == m_kept->file ? m_kept : nullptr;
}

std::optional<std::vector<std::string>> KeyValueStore::readAll() const {
    const auto kept = keptReading();
    const Reading fresh = kept ? Reading{} : readThoroughly();
    const Reading& reading = kept ? *kept : fresh;
    if (!reading.complete()) {
        report("cannot read ", reading.reason);
        if (!reading.hasValues()) {
            return std::nullopt;
        }
    }
    if (reading.missing() > 0) {
        report("default values stand in for " + std::to_string(reading.missing()) + " values of ", "no usable rows");
    }
    std::vector<std::string> values;
    for (std::size_t i = 0; i < reading.values.size(); ++i) {
        values.push_back(reading.values[i].value_or(m_definition.rows[i].value));
    }
    return values;
}

void KeyValueStore::save(const std::string& value, const std::string& key) const {
    if (value.size() > SqliteDatabase::longestValue) {
        report("cannot save " + key + " in ", "the value is too long");
        return;
    }
    SqliteDatabase database(m_file);
    if (!database) {
        report("cannot open ", database.message());
        return;
    }
    auto statement = database.prepare(m_definition.update);
    if (!statement) {
        throw StoreFailure("Error while creating update statement. '" + database.message() + "'");
    }
    statement.bind(1, value);
    statement.bind(2, key);
    if (statement.step() != SQLITE_DONE) {
        report("cannot save " + key + " in ", database.message());
    }
}

KeyValueStore::Reading KeyValueStore::read(Effort effort) const {
    Reading reading;
    reading.values.resize(m_definition.rows.size());
    reading.file = stateOf(m_file);
    SqliteDatabase database(m_file);
    const auto failed = [&](int code, std::string reason) {
        reading.code = code;
        reading.reason = std::move(reason);
        return std::move(reading);
    };
    if (!database) {
        return failed(database.code(), database.message());
    }
    if (effort == Effort::WithoutWaiting) {
        database.doNotWait();
    }
    if (effort == Effort::PastDamage) {
        // With these SQLite reads a file that ends early, or has a damaged page, as far as it goes. Nothing is written
        // in this mode.
        database.execute("PRAGMA writable_schema=ON; PRAGMA cell_size_check=OFF");
    }
    auto select = database.prepare(m_definition.select);
    if (!select) {
        return failed(database.code(), database.message());
    }
    if (select.columnCount() <= valueColumn) {
        return failed(SQLITE_ERROR, "the table has too few columns");
    }
    if (const int code = takeRows(select, m_definition, reading.values); code != SQLITE_DONE) {
        return failed(code, database.message());
    }
    // A table whose columns have other names could be read, but nothing saved in it, ever.
    if (!database.prepare(m_definition.update)) {
        return failed(database.code(), database.message());
    }
    return endsEarly(database, m_file) ? failed(SQLITE_CORRUPT, "the end of the file is cut off") : reading;
}

/// Reads once more where the file is damaged, for what can be kept of it.
KeyValueStore::Reading KeyValueStore::readThoroughly() const {
    Reading reading = read(Effort::Usual);
    if (reading.code == SQLITE_CORRUPT) {
        Reading second = read(Effort::PastDamage);
        if (second.missing() < reading.missing()) {
            reading.values = std::move(second.values);
        }
    }
    return reading;
}

void KeyValueStore::replaceDamaged(const Reading& reading) const {
    const auto aside = replaceStoreFile(m_file, m_definition, reading.values);
    if (!aside) {
        report("cannot replace the damaged store ", reading.reason + "; " + aside.error().message);
        return;
    }
    const auto kept = std::ssize(reading.values) - reading.missing();
    report("replaced the damaged store (kept as " + aside.value().string() + ", " + std::to_string(kept) +
               " values could be read) ",
           reading.reason);
}

void KeyValueStore::report(const std::string& what, const std::string& why) const {
    log(LogLevel::Warning, "persistence", what + m_file.string() + ": " + why);
}

} // namespace starbloom
