// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Menus.h"
#include "shell/HelpCommands.h"
#include "shell/LoadedPrintSystem.h"
#include "tests/shell/PreparedSurroundings.h"
#include "tests/support/TemporaryFolder.h"
#include "views/Texts.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QRegularExpression>
#include <QTest>
#include <QTextEdit>
#include <QTranslator>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

namespace starbloom {

namespace {

/// Every item and the key of its title, in the order in which titles are set. The keys follow no rule.
constexpr const char* titles = R"(
fileMenu makeMenuFile  editMenu makeMenuEdit  toolbarMenu makeMenuToolbar  emitterMenu makeMenuEmitter
windowMenu makeMenuWindow  helpMenu makeMenuHelp  appAbout makeMenuAppAbout  appHideapp makeMenuAppHide
appQuit makeMenuAppQuit  appPreferences makeMenuAppPreferences  appQuicktour makeMenuAppQuicktour
appSavesettings makeMenuAppSavesettings  appLoadsettings makeMenuAppLoadsettings
appDefaultsettings makeMenuAppDefaultsettings  appServices makeMenuAppServices  appHideothers makeMenuAppHideothers
appShowall makeMenuAppShowall  fileNew makeMenuFileNew  fileOpen makeMenuFileOpen  fileClose makeMenuFileClose
fileSave makeMenuFileSave  fileSaveAs makeMenuFileSaveAs  fileExportsettings makeMenuFileExportsettings
fileExport makeMenuFileExport  fileExport2 makeMenuFileExport2  filePrintsetup makeMenuFilePrintsetup
filePrint makeMenuFilePrint  editUndo makeMenuEditUndo  editRedo makeMenuEditRedo  editCut makeMenuEditCut
editCopy makeMenuEditCopy  editPaste makeMenuEditPaste  editPastematch makeMenuEditPastematch
editDelete makeMenuEditDelete  editSelectall makeMenuEditSelectall  editFind makeMenuEditFind
editSpelling makeMenuEditSpelling  editSubstitute makeMenuEditSubstitute  editTransform makeMenuEditTransform
editSpeech makeMenuEditSpeech  editFindfind makeMenuEditFindFind  editFindreplace makeMenuEditFindReplace
editFindnext makeMenuEditFindNext  editFindprev makeMenuEditFindPrev  editFinduseselect makeMenuEditFindUseselect
editFindjump makeMenuEditFindJump  editSpellshow makeMenuEditSpellShow  editSpellcheckdoc makeMenuEditSpellCheckdoc
editSpellcheckspell makeMenuEditSpellCheckspell  editSpellcheckgrammar makeMenuEditSpellCheckgram
editSpellcorrect makeMenuEditSpellCorrect  editSubstshow makeMenuSubstShow
editSubstsmartcopy makeMenuSubstSmartcopy  editSubstsmartquotes makeMenuSubstSmartquo
editSubstsmartdashes makeMenuSubstSmartdash  editSubstsmartlinks makeMenuSubstSmartlinks
editSubstdata makeMenuSubstData  editSubsttext makeMenuSubstText  editTransupper makeMenuEditTransformUpp
editTranslower makeMenuEditTransformLow  editTranscapital makeMenuEditTransformCap
editSpeechstart makeMenuEditSpeechStart  editSpeechstop makeMenuEditSpeechStop  toolbarShow makeMenuToolbarShow
toolbarCustomize makeMenuToolbarCustomize  emitterShow makeMenuEmitterShow  windowMinimize makeMenuWindowMinimize
windowZoom makeMenuWindowZoom  windowOpensettings makeMenuWindowOpensettings
windowBringfront makeMenuWindowBringfront  helpUserguide makeMenuHelpUserguide  helpSupport makeMenuHelpSupport)";

/// Answers each key with itself and the name's place, and remembers what it was asked.
class KeyRecorder final : public QTranslator {
public:
    bool isEmpty() const override { return false; }

    QString translate(const char*, const char* key, const char*, int) const override {
        asked.emplace_back(key);
        return QString::fromLatin1(key) + QStringLiteral(" of %1");
    }

    mutable std::vector<std::string> asked;
};

QChar mnemonicOf(const QString& title) {
    const auto at = title.indexOf(u'&');
    return at < 0 ? QChar() : title.at(at + 1).toUpper();
}

std::map<std::string, std::string> filesIn(const std::filesystem::path& folder) {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            std::ifstream file(entry.path(), std::ios::binary);
            contents[entry.path()] = {std::istreambuf_iterator<char>(file), {}};
        }
    }
    return contents;
}

TEST(Menus, SetsEachTitleOnceInItsOrderFromItsKey) {
    QMainWindow window;
    Menus menus(*window.menuBar(), window);
    KeyRecorder recorder;
    QApplication::installTranslator(&recorder);
    const QString name = QCoreApplication::applicationName();
    QCoreApplication::setApplicationName(QStringLiteral("Firework"));
    menus.makeNSMenu();
    QCoreApplication::setApplicationName(name);
    QApplication::removeTranslator(&recorder);

    std::erase_if(recorder.asked, [](const std::string& key) { // What the toolkit asks, and our own additions.
        return !key.starts_with("makeMenu") || key == "makeMenuEmitterAnimation" || key == "makeMenuEmitterReset" ||
               key == "makeMenuWindowFullscreen";
    });
    std::vector<std::string> expected;
    std::istringstream rows(titles);
    for (std::string item, key; rows >> item >> key;) {
        expected.push_back(key);
        const auto* menu = window.findChild<QMenu*>(QString::fromStdString(item));
        const auto* action = window.findChild<QAction*>(QString::fromStdString(item));
        ASSERT_TRUE(menu != nullptr || action != nullptr) << item;
        const std::string title = (menu != nullptr ? menu->title() : action->text()).toStdString();
        EXPECT_EQ(title, key + " of " + (menu != nullptr ? "%1" : "Firework")) << item;
    }
    EXPECT_EQ(recorder.asked, expected);
}

TEST(Menus, EachItemHasOnePlaceAndALetterOfItsOwnInAnyLanguageAndNoKeyIsTakenTwice) {
    for (const QString& table : QDir(QStringLiteral(":/texts")).entryList()) {
        QTranslator texts;
        ASSERT_TRUE(texts.load(QStringLiteral(":/texts/") + table));
        QApplication::installTranslator(&texts);
        QMainWindow window;
        Menus menus(*window.menuBar(), window);
        menus.makeNSMenu();
        QList<QWidget*> all{window.menuBar()};
        all.append(window.menuBar()->findChildren<QWidget*>(QRegularExpression(QStringLiteral("Menu$"))));
        std::set<const QAction*> seen;
        std::set<QKeySequence> keys;
        for (const QWidget* menu : all) {
            std::set<QChar> letters;
            for (const QAction* action : menu->actions()) {
                if (action->isSeparator()) {
                    continue;
                }
                const std::string where = (table + QStringLiteral(": ") + action->text()).toStdString();
                EXPECT_TRUE(seen.insert(action).second) << where;
                EXPECT_FALSE(mnemonicOf(action->text()).isNull()) << where;
                EXPECT_TRUE(letters.insert(mnemonicOf(action->text())).second) << where;
                EXPECT_TRUE(action->shortcut().isEmpty() || keys.insert(action->shortcut()).second) << where;
            }
        }
        for (const CommandRow& each : commandTable()) {
            EXPECT_TRUE(seen.contains(&menus.action(each.command))) << each.name;
        }
        QApplication::removeTranslator(&texts);
    }
}

TEST(Menus, EightActionsRestWhileThePreferencesAreOpen) {
    for (const char* action : {"appPreferences1:", "viewShow1:", "viewToolbar1:", "windowMinimize1:", "windowZoom1:",
                               "windowBringfront1:", "helpUguide1:", "windowSupport1:"}) {
        EXPECT_FALSE(validateMenuItem(action, true)) << action;
        EXPECT_TRUE(validateMenuItem(action, false)) << action;
    }
    for (const CommandRow& each : commandTable()) {
        EXPECT_TRUE(validateMenuItem(each.action, true)) << each.name;
    }
    EXPECT_STREQ(row(Command::WindowOpensettings).action, "setttingsWindow:");
    EXPECT_EQ(row(Command::AppQuicktour).shortcut, Qt::CTRL | Qt::SHIFT | Qt::Key_Q);
}

/// The whole application.
class MenuCommandsTest : public ::testing::Test {
protected:
    void SetUp() override {
        skipIntroduction(home);
        app.launch();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&app.window()));
    }

    QAction& action(const char* name) {
        auto* found = app.window().findChild<QAction*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    QMessageBox* alert(const char* name) { return app.window().findChild<QMessageBox*>(QLatin1String(name)); }

    /// The edit commands that are enabled in the menu, without the word that they begin with.
    std::string enabledEdits() {
        auto* menu = app.window().findChild<QMenu*>(QStringLiteral("editMenu"));
        emit menu->aboutToShow();
        std::string names;
        for (const char* name :
             {"Undo", "Redo", "Cut", "Copy", "Paste", "Pastematch", "Delete", "Selectall", "Transupper"}) {
            if (action((std::string("edit") + name).c_str()).isEnabled()) {
                names += std::string(names.empty() ? "" : " ") + name;
            }
        }
        return names;
    }

    TemporaryFolder home;
    PreparedSurroundings around{home};
    AppDelegate app{AppFolder(home.path()), around.with()};
};

TEST_F(MenuCommandsTest, EditingActsOnTheFocusedFieldAsFarAsThatMakesSense) {
    QWidget window;
    QLineEdit line(&window);
    QTextEdit text(&window);
    text.move(0, 40);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QApplication::clipboard()->clear();
    window.setFocus();
    EXPECT_EQ(enabledEdits(), "");
    line.setFocus();
    EXPECT_EQ(enabledEdits(), "");
    line.setText(QStringLiteral("one don't"));
    line.selectAll();
    EXPECT_EQ(enabledEdits(), "Cut Copy Delete Selectall Transupper");
    action("editTranscapital").trigger();
    EXPECT_EQ(line.text(), "One Don't");
    action("editTransupper").trigger();
    EXPECT_EQ(line.text(), "ONE DON'T");
    EXPECT_EQ(line.selectedText(), line.text());
    action("editCut").trigger();
    EXPECT_EQ(enabledEdits(), "Undo Paste Pastematch");
    action("editPaste").trigger();
    action("editUndo").trigger();
    EXPECT_EQ(line.text(), "");
    EXPECT_TRUE(action("editRedo").isEnabled() || enabledEdits() == "Undo Redo Paste Pastematch");
    QTest::keyClick(&line, Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(line.text(), "ONE DON'T");
    line.selectAll();
    line.setEchoMode(QLineEdit::Password);
    EXPECT_EQ(enabledEdits(), "Undo Paste Pastematch Delete Selectall");
    line.setEchoMode(QLineEdit::Normal);
    line.setReadOnly(true);
    EXPECT_EQ(enabledEdits(), "Copy Selectall");

    text.setHtml(QStringLiteral("<b>two</b>"));
    text.setFocus();
    EXPECT_EQ(enabledEdits(), "Paste Pastematch Selectall");
    auto* styled = new QMimeData;
    styled->setHtml(QStringLiteral("<i>three</i>"));
    styled->setText(QStringLiteral("three"));
    QApplication::clipboard()->setMimeData(styled);
    text.moveCursor(QTextCursor::End);
    action("editPastematch").trigger();
    EXPECT_TRUE(text.fontWeight() == QFont::Bold && !text.fontItalic());
    action("editSelectall").trigger();
    EXPECT_EQ(enabledEdits(), "Undo Cut Copy Paste Pastematch Delete Selectall Transupper");
    action("editTransupper").trigger();
    EXPECT_EQ(text.toPlainText(), "TWOTHREE");
    action("editDelete").trigger();
    EXPECT_EQ(text.toPlainText(), "");
}

TEST_F(MenuCommandsTest, AMenuOpenedByTheKeyboardFindsTheSelection) {
    auto& field = *app.window().findChild<QLineEdit*>(QStringLiteral("heightFieldT1"));
    field.setFocus();
    field.selectAll();
    app.window().findChild<QMenuBar*>()->setFocus(Qt::MenuBarFocusReason);
    EXPECT_EQ(field.selectedText(), QStringLiteral("480"));
    emit app.window().menus().showing();
    action("editCopy").trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("480"));
}

TEST_F(MenuCommandsTest, HelpAsksFirstAndGivesTheMenusBackWhateverTheAnswer) {
    const auto answers = {0, 1, 2}; // The first button, the second one, and Escape.
    for (const auto& [item, name, question, page] :
         {std::tuple("helpSupport", "supportAlert", "accessHelpSupport", "https://starbloom.example/?p=5411"),
          std::tuple("helpUserguide", "userguideAlert", "accessHelpuserguide",
                     "https://starbloom.example/mac/starbloom/starbloom.php")}) {
        for (const int answer : answers) {
            around.opened.clear();
            action(item).trigger();
            auto* box = alert(name);
            ASSERT_NE(box, nullptr) << name;
            EXPECT_EQ(box->windowModality(), Qt::ApplicationModal);
            EXPECT_EQ(box->icon(), QMessageBox::Warning);
            EXPECT_EQ(box->text(), textOf(question));
            EXPECT_TRUE(box->informativeText().isEmpty());
            ASSERT_EQ(box->buttons().size(), 2);
            for (const char* resting : {"helpSupport", "helpUserguide", "filePrint", "fileOpen", "appPreferences"}) {
                EXPECT_FALSE(action(resting).isEnabled()) << resting;
            }
            EXPECT_TRUE(action("appQuit").isEnabled());
            if (answer == 2) {
                QTest::keyClick(box, Qt::Key_Escape);
            } else {
                const QString label = answer == 0 ? qtTrId("accessYes") : qtTrId("accessCancel");
                for (QAbstractButton* button : box->buttons()) {
                    if (button->text() == label) {
                        button->click();
                        break;
                    }
                }
            }
            EXPECT_EQ(around.opened.toString().toStdString(), answer == 0 ? page : "");
            EXPECT_TRUE(action(item).isEnabled() && action("fileOpen").isEnabled());
            EXPECT_FALSE(action("fileSave").isEnabled());
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
}

TEST_F(MenuCommandsTest, HelpTakesOnlyItsTwoButtonsForAnAnswer) {
    MenuSnapshot snapshot(app.window().menus());
    HelpCommands help(app.window(), snapshot, around);
    for (const auto end : {&HelpCommands::endOfAlert10, &HelpCommands::endOfAlert100, &HelpCommands::endOfAlert101}) {
        for (const int button : {1000, 1001}) {
            around.opened.clear();
            snapshot.saveMenuStatus();
            (help.*end)(999);
            (help.*end)(1002);
            EXPECT_FALSE(action("helpSupport").isEnabled() || around.opened.isValid());
            (help.*end)(button);
            EXPECT_TRUE(action("helpSupport").isEnabled());
            EXPECT_EQ(around.opened.isValid(), button == 1000 && end != &HelpCommands::endOfAlert10);
        }
    }
}

TEST_F(MenuCommandsTest, PrintingRestsTheMenusAndSaysWhenItIsImpossible) {
    for (const auto& [item, task] : {std::pair("filePrint", "page"), std::pair("filePrintsetup", "setup")}) {
        action(item).trigger();
        EXPECT_EQ(around.printSystem.asked, task);
        EXPECT_FALSE(action("filePrint").isEnabled());
        around.printSystem.finished();
        EXPECT_TRUE(action("filePrint").isEnabled());
        EXPECT_EQ(alert("printAlert"), nullptr);
    }
    around.printSystem.available = false;
    action("filePrint").trigger();
    auto* box = alert("printAlert");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(box->text(), textOf("printErrorNSPrintOperation").arg(QCoreApplication::applicationName()));
    ASSERT_EQ(box->buttons().size(), 1);
    EXPECT_EQ(box->buttons().first()->text(), "OK");
    EXPECT_FALSE(action("filePrint").isEnabled());
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_TRUE(action("filePrint").isEnabled());
}

TEST_F(MenuCommandsTest, TheSettingsCommandsAreEnabledAndDoNothing) {
    app.sidebar().openSettings();
    around.calls.advance(std::chrono::seconds(10));
    const auto before = filesIn(home.path());
    for (const char* name : {"appSavesettings", "appLoadsettings", "appDefaultsettings"}) {
        EXPECT_TRUE(action(name).isEnabled());
        action(name).trigger();
        around.calls.advance(std::chrono::seconds(10));
        EXPECT_TRUE(action(name).isEnabled());
    }
    EXPECT_TRUE(filesIn(home.path()) == before);
}

TEST_F(MenuCommandsTest, WindowsAreHiddenShownAndClosedOneByOne) {
    app.sidebar().openSettings();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&app.sidebar()));
    action("appHideapp").trigger();
    EXPECT_TRUE(app.window().isMinimized());
    action("appShowall").trigger();
    EXPECT_FALSE(app.window().isMinimized());
    action("windowZoom").trigger();
    EXPECT_TRUE(app.window().isMaximized() && action("windowZoom").isChecked());
    action("windowZoom").trigger();
    EXPECT_FALSE(app.window().isMaximized());

    app.sidebar().activateWindow();
    // A tool says that it is active when its window is.
    ASSERT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == &app.sidebar(); }));
    QTest::keyClick(&app.sidebar(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(app.sidebar().isVisible());
    EXPECT_TRUE(app.window().isVisible());
    app.window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&app.window()));
    QTest::keyClick(&app.window(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(app.window().isVisible());
}

TEST_F(MenuCommandsTest, WithoutItsToolbarTheWindowStaysAndTheStageTakesTheRoom) {
    auto* stage = app.window().findChild<StageView*>(QStringLiteral("stage"));
    const QRect window = app.window().geometry();
    const QSize size = stage->rect().size();
    action("toolbarShow").trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return stage->rect().height() > size.height() + 30; }));
    EXPECT_EQ(app.window().geometry(), window);
    action("toolbarShow").trigger();
    EXPECT_TRUE(QTest::qWaitFor([&] { return stage->rect().size() == size; }));
}

TEST(LoadedPrintSystem, PrintsOnePageIntoAFile) {
    const TemporaryFolder folder;
    QMainWindow window;
    window.show();
    LoadedPrintSystem printing;
    bool finished = false;
    ASSERT_TRUE(printing.printPlain(window, [&] { finished = true; }));
    auto* panel = window.findChild<QDialog*>();
    ASSERT_NE(panel, nullptr);
    auto* file = panel->findChild<QLineEdit*>(QStringLiteral("filename"));
    auto* printers = panel->findChild<QComboBox*>(QStringLiteral("printers"));
    ASSERT_TRUE(file != nullptr && printers != nullptr);
    printers->setCurrentIndex(printers->count() - 1); // The file, whatever printers there are.
    file->setText(QString::fromStdString((folder / "page.pdf").string()));
    panel->accept();
    EXPECT_TRUE(finished);
    std::ifstream pdf(folder / "page.pdf", std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(pdf), {}};
    EXPECT_TRUE(content.starts_with("%PDF"));
    EXPECT_NE(content.find("/Count 1\n"), std::string::npos);
    EXPECT_EQ(content.find("/BaseFont"), std::string::npos); // Not a letter on it.
}

} // namespace

} // namespace starbloom
