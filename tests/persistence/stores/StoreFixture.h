// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Log.h"
#include "persistence/stores/Stores.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace starbloom {

/// Runs statements on a file with the database library alone, and gives the rows that come out, columns joined by "|".
inline std::vector<std::string> runSql(const std::filesystem::path& file, const std::string& statements) {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    std::vector<std::string> rows;
    const auto collect = [](void* to, int columns, char** texts, char** /*names*/) {
        std::string row;
        for (int i = 0; i < columns; ++i) {
            row += std::string(i > 0 ? "|" : "") + (texts[i] != nullptr ? texts[i] : "NULL");
        }
        static_cast<std::vector<std::string>*>(to)->push_back(row);
        return 0;
    };
    EXPECT_EQ(sqlite3_exec(database, statements.c_str(), collect, &rows, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
    return rows;
}

inline std::vector<std::string> defaultValues(const StoreDefinition& definition) {
    std::vector<std::string> values;
    for (const auto& row : definition.rows) {
        values.push_back(row.value);
    }
    return values;
}

/// A user with an empty application folder, and the log of what happens in it.
class StoreFixture : public testing::Test, protected DocumentsFolder {
protected:
    StoreFixture() {
        app.createAppFolder();
        setLogSink([this](LogLevel, std::string_view, std::string_view message) { messages.emplace_back(message); });
    }

    ~StoreFixture() override { setLogSink({}); }

    std::filesystem::path documentsFolder() const override { return home.path(); }

    /// The first half of a launch.
    void createAll(Stores& stores) const {
        stores.openCreateDB0();
        stores.openCreateDB1();
        stores.openCreateDB2();
    }

    /// How many messages of the log name both: a file and a reason, say.
    std::ptrdiff_t logged(const std::string& one, const std::string& other) const {
        return std::count_if(messages.begin(), messages.end(), [&](const std::string& message) {
            return message.find(one) != std::string::npos && message.find(other) != std::string::npos;
        });
    }

    TemporaryFolder home;
    AppFolder app{home.path()};
    std::vector<std::string> messages;
};

} // namespace starbloom
