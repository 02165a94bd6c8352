// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/DropView.h"
#include "tests/support/TemporaryFolder.h"
#include "views/DisplayView.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
#include <gtest/gtest.h>

#include <fstream>
#include <map>

namespace starbloom {

namespace {

/// Keeps the questions until the test answers them.
class Receiver final : public DropReceiver {
public:
    void getImageSize(const std::filesystem::path& path, std::function<void(const QSize&)> answer) override {
        asked.push_back(path);
        answers[path.filename()] = std::move(answer);
    }

    bool openImage2(const std::filesystem::path& path, bool restoreMenus) override {
        EXPECT_FALSE(restoreMenus);
        opened.push_back(path.filename());
        return true;
    }

    std::vector<std::filesystem::path> asked;
    std::map<std::string, std::function<void(const QSize&)>> answers;
    std::vector<std::string> opened;
};

class DropViewTest : public ::testing::Test {
protected:
    DropViewTest() {
        view.setReceiver(&receiver);
        view.resize(48, 48);
    }

    void hold(const QStringList& urls) {
        QByteArray lines;
        for (const QString& url : urls) {
            lines += url.toLatin1() + "\r\n";
        }
        drag.setData(QStringLiteral("text/uri-list"), lines);
    }

    template <typename Event>
    bool copies(Event&& event) {
        QApplication::sendEvent(&view, &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    }

    bool enters() { return copies(QDragEnterEvent({9, 9}, anyAction, &drag, Qt::LeftButton, {})); }

    bool hovers() { return copies(QDragMoveEvent({9, 9}, anyAction, &drag, Qt::LeftButton, {})); }

    /// Only what has entered can be dropped.
    bool drops() { return enters() && copies(QDropEvent({9, 9}, anyAction, &drag, Qt::LeftButton, {})); }

    static constexpr Qt::DropActions anyAction = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QMimeData drag;
    Receiver receiver;
    DropView view;
};

TEST_F(DropViewTest, FilesAreOpenedInTheOrderOfTheDragWhateverTheOrderOfTheirSizes) {
    hold({QStringLiteral("file:///a.png"), QStringLiteral("file:///narrow.png"), QStringLiteral("file:///b.png"),
          QStringLiteral("file:///c.png")});
    EXPECT_TRUE(drops());
    receiver.answers["c.png"]({100, 3});
    receiver.answers["b.png"]({3, 3});
    receiver.answers["narrow.png"]({2, 100});
    EXPECT_TRUE(receiver.opened.empty());
    receiver.answers["a.png"]({3, 100});
    EXPECT_EQ(receiver.opened, (std::vector<std::string>{"a.png", "b.png", "c.png"}));
}

TEST_F(DropViewTest, ARefusedDropStillLooksLikeACopyWhileItHovers) {
    hold({QStringLiteral("file:///a.png")});
    view.changeDropstatus(false);
    EXPECT_TRUE(enters() && hovers());
    EXPECT_FALSE(drops());
    EXPECT_TRUE(receiver.asked.empty());
    view.changeDropstatus(true);
    EXPECT_TRUE(drops());
    EXPECT_EQ(receiver.asked.size(), 1U);
    hold({QStringLiteral("https://example.org/a.png")});
    EXPECT_FALSE(enters());
}

TEST_F(DropViewTest, FoldersAndWhatIsNoFileOfThisMachineAreSkippedAndPackagesAreFiles) {
    const TemporaryFolder folder;
    const auto package = folder / "Show.AppDir";
    std::filesystem::create_directory(package);
    const QString address = QStringLiteral("file://") + QString::fromStdString(folder.path().string());
    hold({address, address + QStringLiteral("/Show.AppDir"), QStringLiteral("https://example.org/a.png"),
          QStringLiteral("file://elsewhere/a.png"), QStringLiteral("file:///zero%00.png"),
          QStringLiteral("file://localhost/a%20b%0A%FF.png")});
    EXPECT_TRUE(drops());
    const std::filesystem::path odd = "/a b\n\xff.png";
    EXPECT_EQ(receiver.asked, std::vector{odd});

    std::ofstream(package / "AppRun") << "#!/bin/sh\n";
    std::filesystem::permissions(package / "AppRun", std::filesystem::perms::owner_all);
    EXPECT_TRUE(drops());
    EXPECT_EQ(receiver.asked, (std::vector{odd, package, odd}));
    EXPECT_TRUE(DropView::isPathDirectory(package, true));
    EXPECT_FALSE(DropView::isPathDirectory("", true));
    EXPECT_FALSE(DropView::isPathDirectory(package / "AppRun", true));
}

/// What a view paints on white.
QImage painted(QWidget& view) {
    QImage image(view.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    view.render(&image, {}, {}, QWidget::RenderFlags());
    return image;
}

QRect dark(const QImage& image) {
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 192) {
                found |= QRect(x, y, 1, 1);
            }
        }
    }
    return found;
}

TEST_F(DropViewTest, ThePictureOfTheWellFillsItStretched) {
    for (const QSize& size : {QSize(48, 48), QSize(120, 30)}) {
        view.resize(size);
        const QRect found = dark(painted(view));
        EXPECT_GT(found.width(), size.width() * 3 / 4);
        EXPECT_GT(found.height(), size.height() * 3 / 4);
    }
}

TEST(DisplayView, ShowsThePictureInItsMiddleAtItsNaturalSizeInPoints) {
    DisplayView view;
    view.resize(300, 200);
    EXPECT_TRUE(dark(painted(view)).isEmpty());
    QImage image(100, 100, QImage::Format_ARGB32);
    image.fill(Qt::black);
    view.setImage(image);
    EXPECT_EQ(dark(painted(view)), QRect(100, 50, 100, 100));
    image.setDevicePixelRatio(2.0);
    view.setImage(image);
    EXPECT_EQ(dark(painted(view)), QRect(125, 75, 50, 50));

    QImage large(400, 100, QImage::Format_ARGB32);
    large.fill(Qt::transparent);
    for (int y = 0; y < large.height(); ++y) {
        large.setPixelColor(60, y, Qt::black);
        large.setPixelColor(339, y, Qt::black);
        large.setPixelColor(40, y, Qt::black);
    }
    view.setImage(large);
    EXPECT_EQ(dark(painted(view)), QRect(10, 50, 280, 100)) << "cropped equally, and nothing behind it is painted over";
    view.setImage({});
    EXPECT_TRUE(dark(painted(view)).isEmpty());
}

} // namespace

} // namespace starbloom
