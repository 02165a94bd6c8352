// SPDX-License-Identifier: GPL-3.0-or-later
#include <QProcess>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

/// Runs the installed program to its end without a display, or with one that nobody answers at.
void runWithoutDisplay(QProcess& program, const QStringList& arguments, const QString& deadDisplay = {}) {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        environment.remove(QString::fromUtf8(variable));
    }
    if (!deadDisplay.isEmpty()) {
        environment.insert(QStringLiteral("DISPLAY"), deadDisplay);
    }
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(STARBLOOM_PROGRAM), arguments);
    ASSERT_TRUE(program.waitForFinished()) << program.errorString().toStdString();
}

TEST(Program, WithoutADisplaySaysSoInOneLine) {
    for (const QString& deadDisplay : {QString(), QStringLiteral(":7654")}) {
        QProcess program;
        runWithoutDisplay(program, {}, deadDisplay);
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 3);
        const QByteArray message = program.readAllStandardError();
        EXPECT_EQ(message.count('\n'), 1) << message.constData();
        EXPECT_TRUE(message.contains("no display") && message.contains("starbloom-render")) << message.constData();
        EXPECT_TRUE(program.readAllStandardOutput().isEmpty());
    }
}

TEST(Program, AnswersQuestionsWithoutADisplay) {
    QProcess version;
    runWithoutDisplay(version, {QStringLiteral("--version")});
    EXPECT_EQ(version.exitCode(), 0);
    EXPECT_TRUE(version.readAllStandardOutput().startsWith("Starbloom "));
    QProcess wrong;
    runWithoutDisplay(wrong, {QStringLiteral("--nonsense")});
    EXPECT_NE(wrong.exitCode(), 0);
    EXPECT_TRUE(wrong.readAllStandardError().contains("nonsense"));
    QProcess file;
    runWithoutDisplay(file, {QStringLiteral("show.png")});
    EXPECT_EQ(file.exitCode(), 2);
    EXPECT_TRUE(file.readAllStandardError().contains("show.png"));
}

} // namespace

} // namespace starbloom
