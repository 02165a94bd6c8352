// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/persistence/stores/StoreFixture.h"

namespace starbloom {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StoresTest : public StoreFixture {
protected:
    StoresTest() { createAll(stores); }

    Stores stores{app};
};

TEST_F(StoresTest, aFirstLaunchMakesEveryRowInItsPlace) {
    const auto windows = runSql(app.filePath0(), "select ID, field, value from Windows");
    ASSERT_EQ(windows.size(), 20U);
    EXPECT_EQ(windows[0], "1|Width0|0");
    EXPECT_EQ(windows[7], "8|Top1|0");
    EXPECT_EQ(windows[18], "19|Left4|0");

    const auto preferences = runSql(app.filePath1(), "select field, value from Preferences where value <> '0'");
    EXPECT_THAT(preferences, ElementsAre("Value05|14", "Value07|2", "Value10|5", "Value11|5", "Value12|1",
                                         "Value13|400", "Value14|100", "Value15|250", "Value16|20", "Value17|130",
                                         "Value19|80", "Value20|10", "Value21|18", "Value22|6", "Value23|100"));
    const auto ends = runSql(app.filePath1(), "select count(*), min(field), max(field), max(ID) from Preferences");
    EXPECT_THAT(ends, ElementsAre("99|Value00|Value98|99"));

    const auto general = runSql(app.filePath2(), "select count(*), min(field), max(field), max(value) from General");
    EXPECT_THAT(general, ElementsAre("24|Value01|Value24|0"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(app.filePathA()), {}), 3);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(StoresTest, theFilesDescribeTheirTablesInTheWordsOfOldFiles) {
    const std::string schema = "select sql from sqlite_master where type='table' and name not like 'sqlite%'";
    EXPECT_THAT(runSql(app.filePath0(), schema),
                ElementsAre("CREATE TABLE Windows (ID INTEGER PRIMARY KEY AUTOINCREMENT, field text, value text)"));
    EXPECT_THAT(runSql(app.filePath1(), schema),
                ElementsAre("CREATE TABLE Preferences (ID INTEGER PRIMARY KEY AUTOINCREMENT,field text,value text)"));
    EXPECT_THAT(runSql(app.filePath2(), schema),
                ElementsAre("CREATE TABLE General (ID INTEGER PRIMARY KEY AUTOINCREMENT,field text,value text)"));
}

TEST_F(StoresTest, aSecondLaunchChangesNoByte) {
    stores.saveData1("it's \"7\"; -- caf\xE9", "Value05");
    stores.saveData0("612.5", "Width1");
    const auto before = readFile(app.filePath1()) + readFile(app.filePath0()) + readFile(app.filePath2());
    Stores second(app);
    createAll(second);
    EXPECT_EQ(readFile(app.filePath1()) + readFile(app.filePath0()) + readFile(app.filePath2()), before);
    EXPECT_TRUE(second.populateDB0());
    second.setMain();
    EXPECT_EQ(second.preferenceArray().at(5), "it's \"7\"; -- caf\xE9");
    EXPECT_EQ(second.windowArray().at(4), "612.5");
}

TEST_F(StoresTest, aLaunchFillsTheMirrors) {
    stores.populateDB2();
    stores.populateDB1(*this);
    EXPECT_TRUE(stores.populateDB0());
    stores.setMain();
    EXPECT_EQ(stores.windowArray(), defaultValues(windowsDefinition()));
    EXPECT_EQ(stores.checkboxArray(), defaultValues(generalDefinition()));
    ASSERT_EQ(stores.preferenceArray().size(), 198U);
    EXPECT_EQ(stores.preferenceArray()[13], "400");
    EXPECT_EQ(stores.preferenceArray()[0], home.path()) << "the first copy holds the folder in use";
    EXPECT_EQ(stores.preferenceArray()[99], "0") << "the second copy holds what the file holds";
}

TEST_F(StoresTest, fileAndMirrorChangeApart) {
    stores.populateDB2();
    stores.setMain();
    stores.saveData1("7", "Value05");
    EXPECT_EQ(stores.preferenceArray()[5], "14");
    stores.editData1(6, "1");
    stores.reloadOnlyDB1();
    EXPECT_EQ(stores.preferenceArray().size(), 99U);
    EXPECT_EQ(stores.preferenceArray()[5], "7");
    EXPECT_EQ(stores.preferenceArray()[6], "0") << "editing the mirror must not reach the file";
    EXPECT_EQ(stores.preferenceArray()[4], "0") << "only the row of the key changes";

    stores.saveData2("1", "Value01");
    stores.editData2(1, "on");
    EXPECT_EQ(stores.checkboxValue(1), "on");
    stores.clearPreferences();
    EXPECT_THAT(stores.preferenceArray(), IsEmpty());
    stores.populateDB2();
    EXPECT_EQ(stores.checkboxArray()[0], "1");
    EXPECT_EQ(stores.checkboxArray()[1], "0");
}

TEST_F(StoresTest, aKeyWithoutARowChangesNothingAndReportsNothing) {
    const auto before = readFile(app.filePath2());
    stores.saveData2("1", "Value00");
    stores.saveData2("1", "Value01' or '1'='1");
    EXPECT_EQ(readFile(app.filePath2()), before);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(StoresTest, foldersThatAreGoneBecomeTheDocumentsFolderInTheMirrorOnly) {
    const auto shows = home / "sh\xF6ws";
    createFolder(shows);
    for (const auto& gone : {std::string("0"), std::string(), (home / "deleted").string()}) {
        stores.saveData1(gone, "Value00");
        stores.saveData1(shows.string(), "Value01");
        stores.clearPreferences();
        const auto folders = stores.populateDB1(*this);
        EXPECT_EQ(folders.open, home.path()) << gone;
        EXPECT_EQ(folders.destination, shows);
        EXPECT_EQ(stores.preferenceArray()[0], home.path());
        EXPECT_EQ(stores.preferenceArray()[1], shows);
        EXPECT_THAT(runSql(app.filePath1(), "select value from Preferences where field='Value00'"), ElementsAre(gone));
    }
}

TEST_F(StoreFixture, whatWasPreparedCountsUntilSomebodyWrites) {
    Stores first(app);
    first.prepare();
    EXPECT_EQ(TemporaryFolder::countIn(app.filePathA()), 0);
    createAll(first);
    EXPECT_THAT(runSql(app.filePath1(), "PRAGMA integrity_check"), ElementsAre("ok"));
    EXPECT_EQ(runSql(app.filePath1(), preferencesDefinition().select).size(), 99U);

    std::filesystem::last_write_time(app.filePath2(),
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    Stores second(app);
    second.prepare();
    runSql(app.filePath2(), "update General set value='1' where field='Value02'");
    createAll(second);
    second.populateDB2();
    EXPECT_EQ(second.checkboxValue(1), "1");
}

TEST(StoresWithoutFiles, answerWithTheDefaultRows) {
    struct Documents : DocumentsFolder {
        std::filesystem::path documentsFolder() const override { return "/documents"; }
    } documents;

    for (const char* dataHome : {"", "/proc/no-such-folder"}) {
        Stores stores{AppFolder(dataHome)};
        stores.openCreateDB1();
        stores.saveData1("7", "Value05");
        EXPECT_FALSE(stores.populateDB0());
        EXPECT_EQ(stores.windowValue(3), "0");
        EXPECT_EQ(stores.windowValue(20), "");
        stores.editData2(24, "1");
        EXPECT_THAT(stores.checkboxArray(), IsEmpty());
        EXPECT_EQ(stores.preferenceValue(13), "400");
        EXPECT_EQ(stores.populateDB1(documents).destination, "/documents");
        EXPECT_EQ(stores.preferenceValue(1), "/documents");
        EXPECT_EQ(stores.preferenceValue(13), "400");
    }
}

} // namespace

} // namespace starbloom
