// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/persistence/stores/StoreFixture.h"
#include "tests/support/FileSizeLimit.h"

#include <sys/stat.h>
#include <unistd.h>

namespace starbloom {

namespace {

using testing::HasSubstr;

/// The preferences' file with Value05 saved as "7" and Value98 as "last", before something happens to it.
class DamagedStoreTest : public StoreFixture {
protected:
    DamagedStoreTest() {
        store().openCreate();
        store().save("7", "Value05");
        store().save("last", "Value98");
    }

    KeyValueStore store() const { return {file, preferencesDefinition()}; }

    std::filesystem::path copy(int number = 1) const { return file.string() + ".damaged-" + std::to_string(number); }

    void write(const std::string& bytes) const { std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes; }

    /// After a launch: the file as it was lies beside, and the store in its place reads and saves.
    void expectReplaced(const std::string& before, const std::string& what) {
        store().openCreate();
        ASSERT_TRUE(readFile(copy()) == before) << what;
        const auto values = store().readAll();
        ASSERT_TRUE(values) << what;
        EXPECT_EQ(values->at(13), "400") << what;
        store().save("saved", "Value22");
        EXPECT_EQ(store().readAll()->at(22), "saved") << what;
        EXPECT_GT(logged(file.string(), "replaced the damaged store"), 0) << what;
    }

    std::filesystem::path file = app.filePath1();
    std::vector<std::string> defaults = defaultValues(preferencesDefinition());
};

TEST_F(DamagedStoreTest, truncatedAnywhereItIsKeptBesideAndReplaced) {
    const std::string whole = readFile(file);
    ASSERT_GT(whole.size(), 8192U);
    for (std::size_t length = 0; length < whole.size(); length += length < 128 ? 7 : 997) {
        std::filesystem::remove(copy());
        write(whole.substr(0, length));
        expectReplaced(whole.substr(0, length), "cut to " + std::to_string(length));
    }
}

TEST_F(DamagedStoreTest, rowsThatAreStillThereSurviveATruncation) {
    const std::string whole = readFile(file);
    write(whole.substr(0, 8192)); // the rows' own page is the second of three
    expectReplaced(whole.substr(0, 8192), "without the last page");
    EXPECT_EQ(store().readAll()->at(5), "7");
    EXPECT_EQ(store().readAll()->at(98), "last");
}

TEST_F(DamagedStoreTest, flippedBytesNeverCrashNorLoseTheFile) {
    const std::string whole = readFile(file);
    for (std::size_t at = 0; at < whole.size(); at += at < 200 || (at > 4096 && at < 4300) ? 1 : 61) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(~bytes[at]);
        write(bytes);
        store().openCreate();
        ASSERT_TRUE(readFile(file) == bytes || readFile(copy()) == bytes) << at;
        const auto values = store().readAll();
        ASSERT_TRUE(values) << at;
        ASSERT_EQ(values->size(), 99U) << at;
        std::filesystem::remove(copy());
    }
}

TEST_F(DamagedStoreTest, aRowThatClaimsMoreThanMemoryHoldsCountsAsDamage) {
    std::string bytes = readFile(file);
    const auto high = static_cast<unsigned char>(bytes[110]); // where the second row of the schema begins
    const auto low = static_cast<unsigned char>(bytes[111]);
    bytes.replace(high * 256U + low, 18, 18, '\xFF');
    write(bytes);
    expectReplaced(bytes, "an endless row");
}

TEST_F(DamagedStoreTest, foreignFilesAreKeptBesideAndReplaced) {
    write("<?xml version=\"1.0\"?>" + std::string(5000, ' '));
    expectReplaced(readFile(file), "a text");
    const std::vector<std::string> foreign{
        "alter table Preferences rename to Others",
        "drop table Preferences; create table Preferences (field text, value text)",
        "drop table Preferences; create table Preferences (ID integer, name text, text text)",
        "drop table Preferences; create view Preferences as with recursive n(i) as (select 1 union all select i+1 from "
        "n) select i, 'Value' || i as field, zeroblob(1000000) as value from n"};
    for (const auto& statements : foreign) {
        std::filesystem::remove(copy());
        runSql(file, statements);
        expectReplaced(readFile(file), statements);
    }
}

TEST_F(DamagedStoreTest, anotherDamagedFileGetsAnotherName) {
    write("first");
    store().openCreate();
    write("second");
    store().openCreate();
    EXPECT_EQ(readFile(copy(1)), "first");
    EXPECT_EQ(readFile(copy(2)), "second");
}

TEST_F(DamagedStoreTest, aJournalWithoutItsStoreIsNotPlayedIntoTheNewOne) {
    std::filesystem::remove(file);
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        std::ofstream(file.string() + suffix) << "of a store that somebody deleted";
    }
    store().openCreate();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(app.filePathA()), {}), 1);
    EXPECT_EQ(store().readAll(), defaults);
}

TEST_F(DamagedStoreTest, rowsAreFoundByTheirKeysAndMissingOnesAreDefaults) {
    runSql(file, "delete from Preferences where field in ('Value02', 'Value07', 'Value97');"
                 "update Preferences set value=NULL where field='Value10';"
                 "update Preferences set value=x'343500FF' where field='Value11';"
                 "update Preferences set value=printf('%.*c', 3000000, 'x') where field='Value12';"
                 "update Preferences set field=NULL where field='Value03';"
                 "insert into Preferences (field, value) values ('Value05', 'second'), ('Unknown', '1')");
    const auto before = readFile(file);
    store().openCreate();
    auto expected = defaults;
    expected[5] = "7";
    expected[11] = "45";
    expected[98] = "last";
    EXPECT_EQ(store().readAll(), expected);
    EXPECT_TRUE(readFile(file) == before) << "a store that can be read is never altered";
    EXPECT_FALSE(fileExists(copy()));
}

TEST_F(DamagedStoreTest, aHostileTableEndsAtItsLimits) {
    runSql(file, "with recursive n(i) as (select 1 union all select i+1 from n where i<200000) "
                 "insert into Preferences (field, value) select 'x', i from n;"
                 "create trigger t after update on Preferences begin delete from Preferences; end;");
    ASSERT_TRUE(store().readAll());
    store().save("8", "Value05");
    EXPECT_EQ(store().readAll()->at(5), "8");
}

TEST_F(DamagedStoreTest, aTableThatIsGoneMakesSavingThrow) {
    runSql(file, "drop table Preferences");
    try {
        store().save("7", "Value05");
        FAIL() << "nothing was thrown";
    } catch (const StoreFailure& failure) {
        EXPECT_STREQ(failure.what(), "Error while creating update statement. 'no such table: Preferences'");
    }
}

TEST_F(DamagedStoreTest, aLockedStoreIsLeftAlone) {
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "begin exclusive", nullptr, nullptr, nullptr), SQLITE_OK);
    Stores stores(app);
    stores.openCreateDB1();
    stores.setMain();
    EXPECT_TRUE(stores.preferenceArray().empty());
    EXPECT_GT(logged(file.string(), "locked"), 0);
    EXPECT_FALSE(fileExists(copy()));
    EXPECT_THROW(stores.saveData1("8", "Value05"), StoreFailure);

    sqlite3_exec(other, "rollback; begin", nullptr, nullptr, nullptr);
    sqlite3_exec(other, "select * from Preferences", nullptr, nullptr, nullptr);
    stores.setMain();
    EXPECT_EQ(stores.preferenceArray().at(5), "7") << "another reader is no obstacle";
    messages.clear();
    stores.saveData1("8", "Value05");
    EXPECT_EQ(logged("cannot save Value05", "locked"), 1);
    sqlite3_close(other);
    EXPECT_EQ(store().readAll()->at(5), "7");
}

TEST_F(DamagedStoreTest, afterAFailedReadTheMirrorsStayAsTheyWere) {
    Stores stores(app);
    stores.setMain();
    std::filesystem::remove(file);
    stores.reloadOnlyDB1();
    stores.setMain();
    stores.saveData1("8", "Value05");
    EXPECT_EQ(stores.preferenceArray().size(), 99U);
    EXPECT_EQ(stores.preferenceArray()[5], "7");
    EXPECT_FALSE(fileExists(file)) << "reading and saving must not make an empty file";
    EXPECT_GT(logged(file.string(), "No such file"), 0);
}

TEST_F(DamagedStoreTest, whatIsNoFileStaysInItsPlace) {
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    store().openCreate();
    EXPECT_FALSE(store().readAll());
    store().save("7", "Value05");
    EXPECT_TRUE(std::filesystem::is_directory(file));
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    store().openCreate();
    EXPECT_FALSE(store().readAll());
    EXPECT_TRUE(std::filesystem::is_fifo(file));
    EXPECT_GT(logged(file.string(), "not a regular file"), 0);
}

/// Gives up the rights of the administrator, to whom no file is read-only.
class Unprivileged {
public:
    Unprivileged() { m_changed = ::geteuid() == 0 && ::seteuid(65534) == 0; }

    ~Unprivileged() { m_restored = m_changed && ::seteuid(0) == 0; }

private:
    bool m_changed = false;
    bool m_restored = false;
};

TEST_F(DamagedStoreTest, aReadOnlyStoreIsReadAndKeepsItsValues) {
    ::chmod(home.path().c_str(), 0755);
    ::chmod(app.filePathA().c_str(), 0555);
    ::chmod(file.c_str(), 0444);
    const Unprivileged user;
    if (::access(file.c_str(), W_OK) == 0 && ::geteuid() == 0) {
        GTEST_SKIP() << "cannot give up the administrator's rights";
    }
    store().save("8", "Value05");
    EXPECT_GT(logged("cannot save Value05", "readonly"), 0);
    store().openCreate();
    EXPECT_EQ(store().readAll()->at(5), "7");
}

TEST_F(DamagedStoreTest, onAFullDiskNoHalfStoreComesIntoBeing) {
    std::filesystem::remove(file);
    for (rlim_t room = 0; room < 12'288; room += 1024) {
        const FileSizeLimit full(room);
        store().openCreate();
        EXPECT_FALSE(fileExists(file)) << room;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(app.filePathA()), {}), 0);
    EXPECT_GE(logged(file.string(), "cannot write"), 12);
    store().openCreate();
    EXPECT_EQ(store().readAll(), defaults);
}

TEST_F(DamagedStoreTest, onAFullDiskADamagedStoreStaysUntilThereIsRoom) {
    const std::string damaged = readFile(file).substr(0, 8192);
    write(damaged);
    {
        const FileSizeLimit full(4096);
        store().openCreate();
    }
    EXPECT_TRUE(readFile(file) == damaged);
    expectReplaced(damaged, "with room again");
    EXPECT_EQ(store().readAll()->at(98), "last");
}

TEST_F(DamagedStoreTest, onAFullDiskASaveKeepsTheOldValueOrTheNew) {
    {
        const FileSizeLimit full(512);
        store().save("8", "Value05");
    }
    EXPECT_GT(logged("cannot save Value05", file.string()), 0);
    EXPECT_EQ(store().readAll()->at(5), "7");
    store().save(std::string(100'000, 'x'), "Value05");
    EXPECT_EQ(store().readAll()->at(5), "7") << "too long to be read back, so it is not written";
}

} // namespace

} // namespace starbloom
