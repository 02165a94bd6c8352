// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/OpenFile.h"

#include "shell/DesktopFilePanel.h"
#include "shell/FileManager.h"
#include "tests/shell/PictureSamples.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "views/DropView.h"

#include <QFileDialog>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <set>

namespace starbloom {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class Opener final : public OpenFile {
public:
    using OpenFile::OpenFile;

    bool openImage2(const std::filesystem::path& path, bool restoreMenus) override {
        opened.push_back(path);
        return OpenFile::openImage2(path, restoreMenus);
    }

    void getImageSize(const std::filesystem::path& path, std::function<void(const QSize&)> answer) override {
        OpenFile::getImageSize(path, [this, path, answer = std::move(answer)](const QSize& size) {
            sizes[path] = size;
            answer(size);
        });
    }

    std::vector<std::filesystem::path> opened;
    std::map<std::filesystem::path, QSize> sizes; ///< Answers to drops.
};

class OpenFileTest : public ::testing::Test, public DocumentsFolder, public MenuItems, public FilePanel {
protected:
    void SetUp() override {
        appFolder.createAppFolder();
        std::filesystem::create_directory(documentsFolder());
        stores.openCreateDB1();
        stores.populateDB1(*this);
    }

    std::filesystem::path documentsFolder() const override { return home / "documents"; }

    bool isEnabled(MenuItem item) const override { return enabled.contains(item); }

    void setEnabled(MenuItem item, bool on) override { on ? void(enabled.insert(item)) : void(enabled.erase(item)); }

    void ask(const FilePanelRequest& wanted,
             std::function<void(std::optional<std::filesystem::path>)> answer) override {
        request = wanted;
        EXPECT_TRUE(enabled.empty());
        answer(choice);
    }

    std::filesystem::path written(const std::string& name, const std::string& bytes) const {
        std::ofstream(home / name, std::ios::binary) << bytes;
        return home / name;
    }

    /// Has the file chosen; how long the menus are gone.
    Clock::duration timeToOpen(OpenFile& file, const std::filesystem::path& path) {
        choice = path;
        const auto start = Clock::now();
        file.openFile1();
        EXPECT_TRUE(enabled.empty());
        EXPECT_TRUE(QTest::qWaitFor([this] { return enabled == before; })) << path;
        return Clock::now() - start;
    }

    const std::set<MenuItem> before{MenuItem::FileOpen, MenuItem::FileExport};
    std::set<MenuItem> enabled = before;
    std::optional<std::filesystem::path> choice;
    FilePanelRequest request;
    TemporaryFolder home;
    AppFolder appFolder{home.path()};
    Stores stores{appFolder};
    MenuSnapshot menus{*this};
    Opener opener{*this, menus, stores, *this};
};

TEST_F(OpenFileTest, ThePanelOffersThePicturesAndStartsInTheFolderOfThePreferences) {
    const auto folder = home / "pictures";
    std::filesystem::create_directory(folder);
    stores.editData1(0, folder.string());
    QWidget window;
    DesktopFilePanel desktop([&window] { return &window; });
    OpenFile real(desktop, menus, stores, *this);
    real.openFile1();
    auto* dialog = window.findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->nameFilters(), QStringList(QStringLiteral("Pictures (*.bmp *.jpg *.jpeg *.gif *.jp2 *.pdf "
                                                                "*.png *.psd *.tif *.tiff)")));
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Open Picture – Choose a picture file"));
    EXPECT_EQ(dialog->fileMode(), QFileDialog::ExistingFile);
    EXPECT_TRUE(dialog->testOption(QFileDialog::ReadOnly));
    EXPECT_EQ(dialog->directory().path().toStdString(), folder.string());
    EXPECT_TRUE(enabled.empty());
    dialog->reject();
    EXPECT_EQ(enabled, before);

    std::filesystem::remove(folder);
    opener.openFile1();
    EXPECT_EQ(enabled, before);
    EXPECT_EQ(request.startFolder, documentsFolder());
}

TEST_F(OpenFileTest, PicturesOfAllTypesArePassedOnAndSmallOnesAreRefused) {
    for (const auto& [type, bytes] : goodPictures(home.path())) {
        timeToOpen(opener, written("Picture." + type, bytes));
        ASSERT_FALSE(opener.opened.empty()) << type;
        EXPECT_EQ(opener.opened.back(), *choice);
        QSize found;
        opener.getImageSize(*choice, [&found](const QSize& size) { found = size; });
        EXPECT_TRUE(QTest::qWaitFor([&found] { return found == QSize(7, 5); })) << type << ' ' << found.width();
    }
    EXPECT_EQ(opener.opened.size(), 10U);
    timeToOpen(opener, written("3x3.PNG", pngOf({3, 3})));
    EXPECT_EQ(opener.opened.size(), 11U);
    for (const QSize& size : {QSize(2, 2), QSize(2, 100), QSize(100, 2)}) {
        timeToOpen(opener, written("small.png", pngOf(size)));
        EXPECT_EQ(opener.opened.size(), 11U);
    }
}

TEST_F(OpenFileTest, TheExtensionDecidesWhatIsAccepted) {
    EXPECT_EQ(OpenFile::getExtension(""), "");
    EXPECT_EQ(OpenFile::getExtension("/a.b/c"), "");
    EXPECT_EQ(OpenFile::getExtension("/a/.png"), "");
    EXPECT_EQ(OpenFile::getExtension("/a.tar.gz/"), "gz");
    EXPECT_TRUE(opener.openImage2("/a.JPG", false));
    EXPECT_TRUE(opener.openImage2("/a.Tiff", false));
    EXPECT_FALSE(opener.openImage2("/png", false));
    EXPECT_EQ(enabled, before);
    menus.saveMenuStatus();
    EXPECT_FALSE(opener.openImage2("/a.webp", true));
    EXPECT_EQ(enabled, before);
}

TEST_F(OpenFileTest, AProgramThatHangsOrIsMissingOrRavesCostsASecond) {
    const auto script = [this](const std::string& name, const std::string& command) {
        const auto path = written(name, "#!/bin/sh\nexec " + command + "\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return QString::fromStdString(path.string());
    };
    const auto picture = written("a.png", pngOf({3, 3}));
    LogCapture log;
    for (const QString& program : {script("floods", "yes"), script("fails", "false"), script("lies", "echo 5 5 5"),
                                   QString::fromStdString((home / "missing").string())}) {
        Opener other(*this, menus, stores, *this, program);
        EXPECT_LT(timeToOpen(other, picture), 3s) << program.toStdString();
        EXPECT_TRUE(other.opened.empty());
    }
    EXPECT_NE(log.text().find("install the program again"), std::string::npos);

    // A window that closes does not wait for it.
    auto leaving = std::make_unique<Opener>(*this, menus, stores, *this, script("sleeps", "sleep 60"));
    leaving->getImageSize(picture, [](const QSize&) { FAIL(); });
    const auto left = Clock::now();
    leaving.reset();
    EXPECT_LT(Clock::now() - left, 3s);

    // While it is being waited for, the windows cannot be used, and then they can again.
    Opener other(*this, menus, stores, *this, script("hangs", "sleep 60"));
    QPushButton button;
    button.show();
    int clicks = 0;
    QObject::connect(&button, &QPushButton::clicked, [&clicks] { ++clicks; });
    const auto click = [&button] { QTest::mouseClick(button.windowHandle(), Qt::LeftButton, {}, QPoint(5, 5)); };
    choice = picture;
    const auto start = Clock::now();
    other.openFile1();
    click();
    EXPECT_TRUE(QTest::qWaitFor([this] { return enabled == before; }));
    EXPECT_GE(Clock::now() - start, 900ms);
    EXPECT_LE(Clock::now() - start, 3s);
    EXPECT_EQ(clicks, 0);
    click();
    EXPECT_EQ(clicks, 1);
    EXPECT_TRUE(other.opened.empty());
}

TEST_F(OpenFileTest, BrokenAndHostileFilesAreAllAnsweredAndTheMenusAlwaysComeBack) {
    std::filesystem::create_directory(home / "broken");
    const auto pictures = makeBrokenPictures(home / "broken", 300);
    for (std::size_t i = 0; i < pictures.size(); i += i < 24 ? 1 : 25) {
        EXPECT_LE(timeToOpen(opener, pictures[i].path), 3s) << pictures[i].path;
    }

    opener.opened.clear();
    QList<QUrl> urls;
    for (const auto& picture : pictures) {
        urls.append(urlOf(picture.path));
    }
    QMimeData drag;
    drag.setUrls(urls);
    DropView well;
    well.setReceiver(&opener);
    EXPECT_TRUE(well.performDragOperation(drag));
    EXPECT_TRUE(QTest::qWaitFor([&] { return opener.sizes.size() == pictures.size(); }, 200000));

    std::vector<std::filesystem::path> expected;
    for (const auto& [path, hopeless] : pictures) {
        const QSize size = opener.sizes[path];
        EXPECT_TRUE(size == QSize(0, 0) || (!hopeless && !size.isEmpty())) << path << ' ' << size.width();
        if (isLargeEnough(size)) {
            expected.push_back(path);
        }
    }
    EXPECT_EQ(opener.opened, expected);
    EXPECT_EQ(enabled, before);
}

} // namespace

} // namespace starbloom
