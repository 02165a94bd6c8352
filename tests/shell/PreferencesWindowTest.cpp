// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/PreferencesWindow.h"

#include "shell/ControlTitles.h"
#include "shell/DesktopFilePanel.h"
#include "tests/support/TemporaryFolder.h"
#include "views/Texts.h"

#include <QAccessible>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <QTabWidget>
#include <QTest>
#include <gtest/gtest.h>

#include <numeric>

namespace starbloom {

namespace {

class PreferencesWindowTest : public ::testing::Test, public DocumentsFolder, public MenuItems, public FilePanel {
protected:
    void SetUp() override {
        for (const char* name : {"data", "documents", "open", "chosen \xe4"}) {
            std::filesystem::create_directory(home / name);
        }
        appFolder.createAppFolder();
        stores.openCreateDB1();
        stores.openCreateDB2();
        main.setGeometry(300, 200, 640, 480);
        main.show();
        window = std::make_unique<PreferencesWindow>(stores, *this, menus, *this, main);
        window->openPreferences();
    }

    std::filesystem::path documentsFolder() const override { return home / "documents"; }

    bool isEnabled(MenuItem item) const override { return enabled[static_cast<std::size_t>(item)]; }

    void setEnabled(MenuItem item, bool on) override { enabled[static_cast<std::size_t>(item)] = on; }

    void ask(const FilePanelRequest& request,
             std::function<void(std::optional<std::filesystem::path>)> answer) override {
        requests.push_back(request);
        answer(choice);
    }

    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = window->findChild<Widget*>(QString::fromUtf8(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    void click(const char* name) { find<QAbstractButton>(name).click(); }

    std::string text(const char* field) { return find<QLineEdit>(field).text().toStdString(); }

    void chooseOther(const char* popup) {
        find<QComboBox>(popup).setCurrentIndex(1);
        emit find<QComboBox>(popup).activated(1);
    }

    std::vector<std::string> stored() {
        Stores fresh(appFolder);
        fresh.reloadOnlyDB1();
        fresh.populateDB2();
        std::vector<std::string> values(fresh.preferenceArray().begin(), fresh.preferenceArray().begin() + 2);
        const auto& states = fresh.checkboxArray();
        values.push_back(std::accumulate(states.begin(), states.begin() + 12, std::string()));
        return values;
    }

    void saveOpenFolder(const std::string& folder) {
        stores.saveData1(folder, "Value00");
        click("closeButton1p");
        window->openPreferences();
    }

    TemporaryFolder home;
    AppFolder appFolder{home / "data"};
    Stores stores{appFolder};
    std::array<bool, menuItemCount> enabled{true, false, true};
    MenuSnapshot menus{*this};
    QMainWindow main;
    std::optional<std::filesystem::path> choice;
    std::vector<FilePanelRequest> requests;
    std::unique_ptr<PreferencesWindow> window;
};

TEST_F(PreferencesWindowTest, IsModalBelowTheMainWindowsTopAndRestsTheMenusUntilItCloses) {
    EXPECT_TRUE(window->isPreferencesOpen() && window->isModal());
    EXPECT_EQ(window->geometry().x(), 300 + (640 - window->width()) / 2);
    EXPECT_EQ(window->geometry().y(), 230);
    EXPECT_EQ(std::count(enabled.begin(), enabled.end(), true), 0);
    window->openPreferences(); // A second snapshot would record nothing but resting items.
    const std::array<bool, menuItemCount> before{true, false, true};
    const std::function<void()> ways[] = {[this] { QTest::keyClick(window.get(), Qt::Key_Escape); },
                                          [this] { window->close(); }, [this] { click("closeButton1p"); },
                                          [this] { click("saveButton1p"); },
                                          [this] { QTest::keyClick(window.get(), Qt::Key_Return); }};
    for (const auto& close : ways) {
        window->openPreferences();
        close();
        EXPECT_FALSE(window->isPreferencesOpen() || window->isVisible());
        EXPECT_EQ(enabled, before);
        enabled[1] = true; // The program's own doing; a second load would undo it.
        window->close1pClicked();
        EXPECT_TRUE(enabled[1]);
        enabled = before;
    }
    main.move(5000, 5000);
    window->openPreferences();
    EXPECT_TRUE(main.screen()->availableGeometry().contains(window->geometry()));
}

TEST_F(PreferencesWindowTest, EditsAreStoredBySavingOnly) {
    const auto before = stored();
    const auto edit = [this] {
        choice = home / "open";
        chooseOther("systempopup1p");
        choice = home / "chosen \xe4"; // No UTF-8: it has to reach the store byte for byte.
        chooseOther("systempopup2p");
        for (const char* name : {"generalCheckbox02p", "generalCheckbox03p", "generalCheckbox11p"}) {
            click(name);
        }
    };
    edit();
    click("closeButton1p");
    EXPECT_EQ(stored(), before);
    window->openPreferences();
    EXPECT_EQ(text("openField1p"), documentsFolder());
    EXPECT_FALSE(window->isSwitchOn(2));
    edit();
    click("saveButton1p");
    const std::vector<std::string> after{home / "open", home / "chosen \xe4", "011000000010"};
    EXPECT_EQ(stored(), after);
    EXPECT_EQ(stores.preferenceValue(0), home / "open");
    window->openPreferences();
    EXPECT_TRUE(window->isSwitchOn(2) && window->isSwitchOn(11) && !window->isSwitchOn(12));
    click("saveButton1p");
    EXPECT_EQ(stored(), after);
}

TEST_F(PreferencesWindowTest, FoldersFollowThePanelTheDefaultButtonAndTheDisk) {
    saveOpenFolder(home / "open");
    EXPECT_EQ(text("openField1p"), home / "open");
    auto& popup = find<QComboBox>("systempopup1p");
    EXPECT_EQ(popup.itemText(0), "open");
    chooseOther("systempopup1p"); // Cancelled.
    EXPECT_EQ(popup.currentIndex(), 0);
    EXPECT_EQ(text("openField1p"), home / "open");
    EXPECT_EQ(requests.back().startFolder, home / "open");
    EXPECT_TRUE(requests.back().canCreateFolders);
    std::filesystem::remove(home / "open");
    chooseOther("systempopup1p");
    EXPECT_EQ(requests.back().startFolder, documentsFolder());
    saveOpenFolder(home / "open");
    EXPECT_EQ(text("openField1p"), documentsFolder());
    saveOpenFolder(home / "data");
    click("defaultButton1p");
    EXPECT_EQ(text("openField1p"), documentsFolder());
    EXPECT_EQ(popup.itemText(0), "documents");
    EXPECT_EQ(popup.count(), 2);
    // Neither the wheel nor an arrow key may open a panel by itself.
    const auto asked = requests.size();
    QTest::keyClick(&popup, Qt::Key_Down);
    popup.hidePopup();
    EXPECT_EQ(requests.size(), asked);
}

TEST_F(PreferencesWindowTest, EachTextIsThereIsNotCutOffAndHasAMnemonicOfItsOwn) {
    find<QSlider>("compressSlider2p").setValue(40);
    EXPECT_EQ(find<QLabel>("compressLabel2p").text(), "40%");
    auto& tabs = find<QTabWidget>("tabView1p");
    QStringList all{window->windowTitle()};
    for (int page = 0; page < tabs.count(); ++page) {
        tabs.setCurrentIndex(page);
        QCoreApplication::processEvents();
        QStringList texts{tabs.tabText(0), tabs.tabText(1)};
        for (auto* each : window->findChildren<QWidget*>()) {
            const QString text = each->property("text").toString();
            if (!each->isVisible() || each->inherits("QTabBar")) {
                continue;
            }
            texts << text;
            all << text << each->toolTip() << each->accessibleName() << each->property("title").toString();
            const int needed = each->hasHeightForWidth() ? each->heightForWidth(each->width()) : 0;
            const bool wraps = each->property("wordWrap").toBool() || each->inherits("QLineEdit");
            EXPECT_TRUE(each->height() >= needed && (wraps || each->width() >= each->minimumSizeHint().width()))
                << text.toStdString();
            if (each->focusPolicy() != Qt::NoFocus && each->focusProxy() == nullptr) {
                auto* spoken = QAccessible::queryAccessibleInterface(each);
                EXPECT_NE(spoken->text(QAccessible::Name), "") << each->objectName().toStdString();
                EXPECT_NE(spoken->text(QAccessible::Description), "") << each->objectName().toStdString();
            }
        }
        QStringList mnemonics;
        for (const QString& each : texts.filter(QStringLiteral("&"))) {
            mnemonics << each.mid(each.indexOf(u'&') + 1, 1).toUpper();
        }
        EXPECT_EQ(mnemonics.removeDuplicates(), 0) << mnemonics.join(u' ').toStdString();
    }
    for (const ControlTitle& each : controlTitles()) {
        all << textOf(each.key);
    }
    // A key without a text shows itself.
    EXPECT_EQ(all.filter(QRegularExpression("^(control|preferences)[A-Z]")), QStringList());
}

TEST(DesktopFilePanel, AnswersOnceWithTheChoiceOrNothingAndNeverAfterItsEnd) {
    const TemporaryFolder folder;
    QWidget parent;
    parent.show();
    auto panel = std::make_unique<DesktopFilePanel>([&] { return &parent; });
    std::vector<std::optional<std::filesystem::path>> answers;
    const auto ask = [&] {
        panel->ask({.message = "M", .title = "T", .startFolder = folder.path()},
                   [&](const auto& answer) { answers.push_back(answer); });
        return QPointer(parent.findChild<QFileDialog*>());
    };
    auto dialog = ask();
    ASSERT_TRUE(dialog != nullptr && dialog->isVisible());
    EXPECT_EQ(dialog->windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("T – M"));
    EXPECT_TRUE(dialog->testOption(QFileDialog::ReadOnly));
    EXPECT_TRUE(answers.empty());
    QMetaObject::invokeMethod(dialog, "accept");
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.isNull(); }));
    QTest::keyClick(ask(), Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return parent.findChild<QFileDialog*>() == nullptr; }));
    dialog = ask();
    panel.reset();
    EXPECT_TRUE(dialog.isNull());
    EXPECT_EQ(answers, (std::vector<std::optional<std::filesystem::path>>{folder.path(), std::nullopt}));
}

TEST(DesktopFilePanel, BelongsToTheMainWindowAndGivesANewFileItsExtension) {
    const TemporaryFolder folder;
    QMainWindow window;
    window.show();
    DesktopFilePanel panel;
    std::optional<std::filesystem::path> answer;
    panel.ask({.kind = FilePanelRequest::Kind::NewFile,
               .startFolder = folder.path(),
               .suggestedName = "Untitled",
               .extension = "m4v"},
              [&](const auto& choice) { answer = choice; });
    auto* dialog = window.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    name->setFocus();
    EXPECT_EQ(name->text(), QStringLiteral("Untitled.m4v"));
    name->setText(QStringLiteral("Show 31.12"));
    QMetaObject::invokeMethod(dialog, "accept");
    EXPECT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }));
    EXPECT_EQ(answer, folder / "Show 31.12.m4v");
}

} // namespace

} // namespace starbloom
