// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/SharedFolderChoice.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace starbloom {

namespace {

/// A panel that waits for the test's answer.
class FakePanel final : public FilePanel {
public:
    void ask(const FilePanelRequest& wanted,
             std::function<void(std::optional<std::filesystem::path>)> whenDone) override {
        request = wanted;
        answer = std::move(whenDone);
    }

    FilePanelRequest request;
    std::function<void(std::optional<std::filesystem::path>)> answer;
};

class FakeItems final : public MenuItems {
public:
    bool isEnabled(MenuItem item) const override { return enabled.contains(item); }

    void setEnabled(MenuItem item, bool on) override { on ? void(enabled.insert(item)) : void(enabled.erase(item)); }

    std::set<MenuItem> enabled{MenuItem::FileOpen, MenuItem::FileExport};
};

class SharedFolderChoiceTest : public testing::Test {
protected:
    TemporaryFolder folder;
    std::filesystem::path file = folder / "Data3.data";
    FakePanel panel;
    FakeItems items;
    MenuSnapshot menus{items};
    std::vector<std::string> shown;
    SharedFolderChoice choice{panel, menus, file, [this](const SharedFolder& shared) {
                                  shown.push_back(shared.text());
                                  EXPECT_EQ(items.enabled.empty(), shown.size() == 1) << "menus come back in between";
                              }};
};

TEST_F(SharedFolderChoiceTest, aChoiceIsShownSavedAndShownAsSaved) {
    choice.selectedSharedFolder("message", "title", folder.path());
    EXPECT_EQ(panel.request.kind, FilePanelRequest::Kind::Folder);
    EXPECT_TRUE(panel.request.canCreateFolders);
    EXPECT_EQ(panel.request.startFolder, folder.path());
    EXPECT_TRUE(items.enabled.empty());
    panel.answer(folder.path());
    EXPECT_EQ(shown, std::vector(2, folder.path().string()));
    EXPECT_EQ(loadSharedFolder(file).folder, folder.path());
    EXPECT_EQ(items.enabled.size(), 2);
}

TEST_F(SharedFolderChoiceTest, cancellingChangesNothing) {
    choice.selectedSharedFolder("message", "title", std::nullopt);
    panel.answer(std::nullopt);
    EXPECT_TRUE(shown.empty());
    EXPECT_EQ(folder.entryCount(), 0);
    EXPECT_EQ(items.enabled.size(), 2);
}

} // namespace

} // namespace starbloom
