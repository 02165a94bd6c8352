// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/AppFolder.h"

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <pwd.h>
#include <unistd.h>

namespace starbloom {

namespace {

std::string dataHomeWith(const std::map<std::string, std::string>& variables) {
    const auto path = AppFolder::dataHome([&](const char* name) -> std::optional<std::string> {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional(found->second);
    });
    return path ? path.value().string() : "error: " + path.error().message;
}

TEST(AppFolder, dataHomeFollowsTheDesktopsRules) {
    EXPECT_EQ(dataHomeWith({{"XDG_DATA_HOME", "/data"}, {"HOME", "/home/me"}}), "/data");
    EXPECT_EQ(dataHomeWith({{"XDG_DATA_HOME", "data"}, {"HOME", "/home/me"}}), "/home/me/.local/share");
    EXPECT_EQ(dataHomeWith({{"XDG_DATA_HOME", ""}, {"HOME", "/home/me"}}), "/home/me/.local/share");
    const passwd* user = ::getpwuid(::getuid());
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(dataHomeWith({{"HOME", "me"}}), std::string(user->pw_dir) + "/.local/share");
    EXPECT_EQ(dataHomeWith({}), std::string(user->pw_dir) + "/.local/share");
}

TEST(AppFolder, everyKeptFileHasItsName) {
    const AppFolder folder("/data", "Show");
    EXPECT_EQ(folder.filePathA(), "/data/Show");
    EXPECT_EQ(folder.filePathB(), "/data/Show/Presets");
    EXPECT_EQ(folder.filePath0(), "/data/Show/Data0.data");
    EXPECT_EQ(folder.filePath1(), "/data/Show/Data1.data");
    EXPECT_EQ(folder.filePath2(), "/data/Show/Data2.data");
    EXPECT_EQ(folder.filePath3(), "/data/Show/Data3.data");
    EXPECT_EQ(folder.filePath4(), "/data/Show/Data4.data");
    EXPECT_EQ(folder.filePath5(), "/data/Show/package");
    EXPECT_EQ(folder.filePath6(), "/data/Show/Data6.data");
    EXPECT_EQ(AppFolder("/data").filePathA(), "/data/Starbloom");
    EXPECT_EQ(AppFolder("").filePath1(), "") << "a user without a home must not get files in the working directory";
}

TEST(AppFolder, isMadeOnceWithTheFoldersAboveItAndANameThatIsNoUtf8) {
    const TemporaryFolder home;
    const AppFolder folder(home / "caf\xE9/share");
    folder.createAppFolder();
    std::ofstream(folder.filePath4()) << "kept";
    folder.createAppFolder();
    EXPECT_EQ(readFile(home / "caf\xE9/share/Starbloom/Data4.data"), "kept");
}

TEST(AppFolder, aFileInItsWayOrAFileAsItsParentChangesNothing) {
    const TemporaryFolder home;
    std::ofstream(home / "Starbloom") << "file";
    AppFolder(home.path()).createAppFolder();
    AppFolder(home / "Starbloom").createAppFolder();
    EXPECT_EQ(readFile(home / "Starbloom"), "file");
}

TEST(AppFolder, helpersOfPaths) {
    const TemporaryFolder home;
    EXPECT_FALSE(fileExists(""));
    EXPECT_TRUE(fileExists(home.path()));
    EXPECT_FALSE(fileExists(home / "missing"));
    EXPECT_FALSE(fileExists(std::string(100'000, 'x'))) << "a name that no file can have";

    EXPECT_EQ(getlastpath("/one/two/three"), "three");
    EXPECT_EQ(getlastpath("/one/two/"), "two");
    EXPECT_EQ(getlastpath("/"), "/");
    EXPECT_EQ(getlastpath("name"), "name");
    EXPECT_EQ(getlastpath(""), "");
    EXPECT_EQ(getlastpath("/one/caf\xE9"), "caf\xE9");
}

} // namespace

} // namespace starbloom
