// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"
#include "shell/LogCategories.h"
#include "shell/ShowSeed.h"

#include <QLoggingCategory>
#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace starbloom {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Collects what reaches the desktop's logging, as "category level text".
class LogTest : public ::testing::Test {
protected:
    void SetUp() override {
        s_lines.clear();
        m_before = qInstallMessageHandler(collect);
        sendLogToCategories();
    }

    void TearDown() override {
        setLogSink({});
        qInstallMessageHandler(m_before);
        QLoggingCategory::setFilterRules({});
        qunsetenv(seedVariable);
    }

    static void collect(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        const char* level = type == QtWarningMsg ? " warning " : type == QtInfoMsg ? " info " : " other ";
        s_lines.push_back(context.category + std::string(level) + text.toStdString());
    }

    static inline std::vector<std::string> s_lines;

private:
    QtMessageHandler m_before = nullptr;
};

TEST_F(LogTest, EachFolderHasACategoryThatCanBeSwitchedOff) {
    log(LogLevel::Warning, "engine", "too \"many\" ✨");
    log(LogLevel::Info, "export", "written");
    log(LogLevel::Info, "engine", "fine");
    EXPECT_THAT(s_lines, ElementsAre("starbloom.engine warning too \"many\" ✨", "starbloom.export info written",
                                     "starbloom.engine info fine"));
    s_lines.clear();
    QLoggingCategory::setFilterRules(QStringLiteral("starbloom.engine.info=false"));
    log(LogLevel::Info, "engine", "quiet");
    log(LogLevel::Info, "export", "loud");
    EXPECT_THAT(s_lines, ElementsAre("starbloom.export info loud"));
}

TEST_F(LogTest, TheSeedComesFromTheEnvironmentOrIsRandomAndIsLogged) {
    qputenv(seedVariable, "18446744073709551615");
    EXPECT_EQ(chooseShowSeed(), 18446744073709551615ULL);
    EXPECT_THAT(s_lines, ElementsAre(HasSubstr("18446744073709551615")));
    for (const char* wrong : {"", "x12", "12 y", "-1", "18446744073709551616"}) {
        s_lines.clear();
        qputenv(seedVariable, wrong);
        const auto seed = chooseShowSeed();
        EXPECT_NE(seed, chooseShowSeed()) << wrong;
        EXPECT_THAT(s_lines[0], HasSubstr("warning")) << wrong;
        EXPECT_THAT(s_lines[1], HasSubstr(std::to_string(seed)));
    }
}

} // namespace

} // namespace starbloom
