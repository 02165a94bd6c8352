// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/stores/AppFolder.h"
#include "persistence/stores/KeyValueStore.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace starbloom {

/// Where the user's documents lie, which only the desktop knows. Without such a folder it answers with the home folder.
class DocumentsFolder {
public:
    virtual ~DocumentsFolder() = default;
    virtual std::filesystem::path documentsFolder() const = 0;
};

/// The folders that the preferences window shows, and that file panels start in.
struct PreferenceFolders {
    std::filesystem::path open;
    std::filesystem::path destination;
};

/// The three stores of the program with their mirrors: the values in memory, which the program reads by position.
///
/// A mirror and its file change apart from each other: saveData writes the file only, editData the mirror only. At
/// launch the order is openCreateDB0 to openCreateDB2, populateDB2, populateDB1, populateDB0, setMain. The operations
/// hold the data's half of each step; the windows' half is the shell's, which takes it from what they return.
///
/// Used from one thread. Failures are logged, and a failed read leaves its mirror as it was. The saveData operations
/// throw StoreFailure as KeyValueStore::save() does.
class Stores {
public:
    explicit Stores(const AppFolder& folder);

    /// Has all three do beforehand what they can; see KeyValueStore::prepare().
    void prepare();

    // Make the files of a first launch; see KeyValueStore::openCreate().
    void openCreateDB0();
    void openCreateDB1();
    void openCreateDB2();

    /// Appends the window frames to their mirror. False if they could not be read: no frame is to be restored then.
    bool populateDB0();

    /// Appends the preferences to their mirror, then settles elements 0 and 1, the folder to open files from and the
    /// one to export to: a value that is "0", empty or names nothing that exists becomes the documents folder. The
    /// mirror takes the folders; the file keeps its values. This second half also runs when the reading failed.
    PreferenceFolders populateDB1(const DocumentsFolder& documents);

    /// Appends the check boxes' states to their mirror.
    void populateDB2();

    /// Reads the preferences again in place of the mirror's content.
    void reloadOnlyDB1();

    /// Empties the check boxes' mirror and appends their states again.
    void reloadDB2();

    /// The last step of a launch: appends the preferences once more, so that their mirror holds them twice. Readers use
    /// the first copy only.
    void setMain();

    /// Empties preferenceArray and checkboxArray, as the preferences window does before it populates them again.
    void clearPreferences();

    // Write one value to a file.
    void saveData0(const std::string& value, const std::string& key) const;
    void saveData1(const std::string& value, const std::string& key) const;
    void saveData2(const std::string& value, const std::string& key) const;

    // Replace one element of preferenceArray or checkboxArray. A mirror that could not be filled gets its default rows
    // first; a position that no row has is ignored with a line in the log.
    void editData1(std::size_t position, const std::string& value);
    void editData2(std::size_t position, const std::string& value);

    const std::vector<std::string>& windowArray() const { return m_windows.mirror; }

    const std::vector<std::string>& preferenceArray() const { return m_preferences.mirror; }

    const std::vector<std::string>& checkboxArray() const { return m_checkboxes.mirror; }

    // One element by its position. Where the mirror has none, the default row of that position answers, and "" beyond
    // the last one.
    std::string windowValue(std::size_t position) const;
    std::string preferenceValue(std::size_t position) const;
    std::string checkboxValue(std::size_t position) const;

private:
    struct MirroredStore {
        KeyValueStore store;
        std::vector<std::string> mirror;

        bool append();
        void edit(std::size_t position, const std::string& value);
        std::string value(std::size_t position) const;
    };

    std::filesystem::path settleFolder(std::size_t position, const DocumentsFolder& documents);

    MirroredStore m_windows;
    MirroredStore m_preferences;
    MirroredStore m_checkboxes;
};

} // namespace starbloom
