// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/shell/PreparedSurroundings.h"
#include "views/ColorWell.h"
#include "views/ParameterSlider.h"
#include "views/PathControl.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// What the reader that was written after docs/file-formats.md finds.
QJsonObject readByTheDocument(const std::filesystem::path& folder, const std::filesystem::path& picture) {
    QProcess reader;
    reader.start(QStringLiteral("python3"),
                 {QStringLiteral(STARBLOOM_SOURCES "/tests/documents/read_application_folder.py"),
                  QString::fromStdString(folder.string()), QString::fromStdString(picture.string())});
    reader.waitForFinished();
    EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardError().toStdString();
    return QJsonDocument::fromJson(reader.readAllStandardOutput()).object();
}

template <typename Widget>
Widget& find(AppDelegate& app, const char* name) {
    return *app.window().findChild<Widget*>(QString::fromUtf8(name));
}

QJsonObject object(const char* json) {
    return QJsonDocument::fromJson(json).object();
}

TEST(FileFormats, AreWhatTheDocumentSaysOfAFolderThatWasWorkedIn) {
    const TemporaryFolder home;
    const auto out = home / "Feu d'été";
    std::filesystem::create_directory(out);
    skipIntroduction(home);
    PreparedSurroundings around{home};
    AppDelegate app{AppFolder(home.path()), around.with()};
    app.launch();
    const auto press = [&](const char* name) { find<QPushButton>(app, name).click(); };
    const auto trigger = [&](const char* name) { find<QAction>(app, name).trigger(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return app.window().findChild<StageView*>()->renderedFrames() > 0; }));

    trigger("showsettingsToolbar");
    QTest::keyClick(&find<ParameterSlider>(app, "rocketVelocitySlider"), Qt::Key_Home);
    press("saveButton6");
    around.panel.answer = out;
    find<PathControl>(app, "pathControlT1").click();
    emit find<ColorWell>(app, "colorWellT1").colorPicked(QColor(255, 51, 0));
    trigger("fileExportsettings");
    QTest::keyClick(&find<QComboBox>(app, "formatPButton3"), Qt::Key_End);
    find<QLineEdit>(app, "fileField3").selectAll();
    find<QLineEdit>(app, "fileField3").insert(QStringLiteral("Été"));
    press("saveButton3");
    QTest::keyClick(&find<QDialog>(app, "exportWindow"), Qt::Key_Escape);
    trigger("appPreferences");
    find<QCheckBox>(app, "generalCheckbox03p").click();
    press("saveButton1p");
    around.calls.advance(2s);
    trigger("savepictToolbar");
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(out / "Été.tif"); }, 20000));

    const QJsonObject found = readByTheDocument(home / "Starbloom", out / "Été.tif");
    EXPECT_GT(found.value(QStringLiteral("Data0.data")).toObject().value(QStringLiteral("Width0")).toString().toInt(),
              0);
    EXPECT_EQ(found.value(QStringLiteral("Data1.data")).toObject().value(QStringLiteral("Value13")).toString(),
              QStringLiteral("250"));
    EXPECT_EQ(found.value(QStringLiteral("Data2.data")).toObject(), object(R"({"Value02": "1", "Value03": "1"})"));
    EXPECT_EQ(found.value(QStringLiteral("Data3.data")).toString().toStdString(), out.string());
    EXPECT_EQ(found.value(QStringLiteral("Data4.data")).toObject(),
              object(R"({"format": "TIFF", "quality": 100, "name": "Été"})"));
    EXPECT_EQ(QJsonObject({{QStringLiteral("rgb"), found.value(QStringLiteral("Data6.data"))}}),
              object(R"({"rgb": [1, 0.2, 0]})"));
    const QJsonObject note = found.value(QStringLiteral("Été.tif")).toObject();
    EXPECT_EQ(note.value(QStringLiteral("rocketVelocitySlider")).toString(), QStringLiteral("250"));
    EXPECT_EQ(note.value(QStringLiteral("background")).toString(), QStringLiteral("1,0.2,0,1"));
}

} // namespace

} // namespace starbloom
