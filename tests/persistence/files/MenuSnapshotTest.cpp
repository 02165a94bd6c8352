// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/MenuSnapshot.h"

#include <gtest/gtest.h>

#include <set>

namespace starbloom {

namespace {

/// Items of which the export command follows the save command, as bound commands may.
class FakeItems final : public MenuItems {
public:
    bool isEnabled(MenuItem item) const override { return enabled.contains(item); }

    void setEnabled(MenuItem item, bool on) override {
        on ? void(enabled.insert(item)) : void(enabled.erase(item));
        if (item == MenuItem::FileSave && !on) {
            enabled.erase(MenuItem::FileExport);
        }
    }

    std::set<MenuItem> enabled;
};

TEST(MenuSnapshot, givesEachItemBackAsItWas) {
    FakeItems items;
    for (std::size_t i = 0; i < menuItemCount; ++i) {
        items.enabled.insert(static_cast<MenuItem>(i));
    }
    items.enabled.erase(MenuItem::FileClose);
    const auto before = items.enabled;
    MenuSnapshot snapshot(items);
    snapshot.saveMenuStatus();
    EXPECT_TRUE(items.enabled.empty());
    snapshot.loadMenuStatus();
    EXPECT_EQ(items.enabled, before);
    items.enabled.clear();
    snapshot.loadMenuStatus();
    EXPECT_EQ(items.enabled, before) << "the record stays until the next save";
}

TEST(MenuSnapshot, withoutASaveOrAfterTwoEverythingEndsDisabled) {
    FakeItems items;
    items.enabled = {MenuItem::AppPreferences, MenuItem::HelpUserguide};
    MenuSnapshot snapshot(items);
    snapshot.loadMenuStatus();
    EXPECT_TRUE(items.enabled.empty());
    items.enabled = {MenuItem::AppPreferences, MenuItem::HelpUserguide};
    snapshot.saveMenuStatus();
    snapshot.saveMenuStatus();
    snapshot.loadMenuStatus();
    EXPECT_TRUE(items.enabled.empty());
}

TEST(MenuSnapshot, namesStandInTheItemsOrder) {
    const auto name = [](MenuItem item) { return menuItemNames[static_cast<std::size_t>(item)]; };
    EXPECT_EQ(name(MenuItem::FileClose), "fileClose");
    EXPECT_EQ(name(MenuItem::FilePrintsetup), "filePrintsetup");
    EXPECT_EQ(name(MenuItem::HelpUserguide), "helpUserguide");
}

} // namespace

} // namespace starbloom
