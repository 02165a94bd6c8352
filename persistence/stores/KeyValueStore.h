// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/stores/StoreFile.h"
#include "persistence/stores/StoreTables.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace starbloom {

/// Thrown when the statement that saves a value cannot be prepared.
///
/// This is the one exception that the core throws by design: everything else hands its errors up as values. It stands
/// for a store that was usable at launch and is no longer one, of which a caller that saves a slider can make nothing;
/// so it ends the whole operation, and the shell's outermost handler is the one place that expects it.
class StoreFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One small database file with one table of keys and values, both text.
///
/// The file is opened, used and closed within each operation, so several programs can share it and a crash at any other
/// time cannot harm it. Used from one thread at a time. The definition has to outlive the store. Failures are logged
/// with the file and the reason; save() alone can throw.
///
/// The file's content is not trusted:
/// - Rows are found by their keys and not by their order, because positions are what the rest of the program relies on:
///   one missing row would shift all others to the wrong meaning. A key without a row, or with NULL or a far too long
///   value, has its default value. Of several rows with one key the first counts; rows with unknown keys are left out.
/// - A file that is no database, is damaged, or has no such table, is renamed to "<name>.damaged-<number>" by the next
///   openCreate(), which puts a new store in its place, with every value that could still be read.
/// - A file that merely cannot be had at the moment (locked, no permission, a folder, a failing disk) stays as it is.
class KeyValueStore {
public:
    KeyValueStore(std::filesystem::path file, const StoreDefinition& definition);

    /// Does what openCreate() can do beforehand: reads the file, or works out the one to be made. Any thread may do it
    /// while the store is not in use: it changes nothing on the disk, and leaves a file alone that is locked or that
    /// SQLite would first have to repair. What it read counts only while nobody has written to the file.
    void prepare();

    /// For the launch: makes the file with its default rows if it does not exist (see createStoreFile()), replaces one
    /// that is damaged, and leaves any other alone, whatever rows it has. Removes what killed runs left in the folder.
    /// Has to read the whole file for that, and keeps what it read for the launch's own reading.
    void openCreate();

    /// The value of each key, in the order of the definition's rows. Nothing when the file or its table cannot be read;
    /// if only the reading of its later rows fails, those have their default values. Changes nothing. While nobody has
    /// written to the file since prepare() or openCreate() read it, it is not read again.
    std::optional<std::vector<std::string>> readAll() const;

    /// Writes one value. A key that has no row changes nothing and reports nothing. A file that cannot be opened, one
    /// that is read-only, or a full disk, leaves the old value and a line in the log. Throws StoreFailure with "Error
    /// while creating update statement. '<reason>'" when the statement cannot be prepared.
    void save(const std::string& value, const std::string& key) const;

    const std::filesystem::path& file() const { return m_file; }

    const StoreDefinition& definition() const { return m_definition; }

private:
    enum class Effort { WithoutWaiting, Usual, PastDamage };
    struct Reading;
    Reading read(Effort effort) const;
    Reading readThoroughly() const;
    std::shared_ptr<const Reading> keptReading() const;
    void keep(Reading reading);
    void create();
    void replaceDamaged(const Reading& reading) const;
    void report(const std::string& what, const std::string& why) const;

    std::filesystem::path m_file;
    const StoreDefinition& m_definition;
    std::vector<std::byte> m_image;        ///< Nothing, or the file that openCreate() is to make.
    std::shared_ptr<const Reading> m_kept; ///< Nothing, or what prepare() or openCreate() read without an error.
};

} // namespace starbloom
