// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"
#include "shell/Application.h"
#include "shell/LogCategories.h"
#include "shell/QtDelayedCalls.h"
#include "shell/ShowSeed.h"
#include "views/Texts.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace {

void describe(QCoreApplication& application) {
    application.setApplicationName(QStringLiteral("Starbloom"));
    application.setApplicationVersion(QStringLiteral(STARBLOOM_VERSION));
}

/// Answers --help and --version, and an argument that is none; all three end the program.
void readArguments(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate("main", "Fireworks on the desktop."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);
    if (const QStringList extra = parser.positionalArguments(); !extra.isEmpty()) {
        std::fprintf(stderr, "starbloom: '%s' is not an option; --help shows them\n", qUtf8Printable(extra.first()));
        std::exit(2);
    }
}

/// Whether there can be a window. Asked before Qt is, which would end the program with a core dump.
bool hasDisplay(int argc, char** argv) {
    const auto isPlatformOption = [](std::string_view argument) {
        return argument == "-platform" || argument == "--platform";
    };
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || std::any_of(argv, argv + argc, isPlatformOption);
}

/// Apart from other failures, so that a script can turn to starbloom-render.
constexpr int noDisplayStatus = 3;

constexpr const char* noDisplay =
    "starbloom: no display to show a window on; starbloom-render makes pictures and movies without one\n";

int refuse(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    describe(application);
    readArguments(application);
    std::fputs(noDisplay, stderr);
    return noDisplayStatus;
}

QtMessageHandler usualHandler = nullptr;

/// Stands in while Qt opens the display. A display that does not answer is fatal to Qt, which would explain itself at
/// length and dump core.
void refuseInsteadOfAborting(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtFatalMsg) {
        std::fputs(noDisplay, stderr);
        std::_Exit(noDisplayStatus);
    }
    const bool aboutDisplay = context.category != nullptr && std::string_view(context.category).starts_with("qt.qpa");
    if (!aboutDisplay) {
        usualHandler(type, context, message);
    }
}

/// Where the program keeps its files. A user without a home gets a show that forgets.
starbloom::AppFolder applicationFolder() {
    const auto dataHome = starbloom::AppFolder::dataHome([](const char* name) -> std::optional<std::string> {
        return qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name).toStdString()) : std::nullopt;
    });
    return starbloom::AppFolder(dataHome ? dataHome.value() : std::filesystem::path());
}

} // namespace

int main(int argc, char** argv) {
    if (!hasDisplay(argc, argv)) {
        return refuse(argc, argv);
    }
    usualHandler = qInstallMessageHandler(refuseInsteadOfAborting);
    starbloom::Application application(argc, argv);
    qInstallMessageHandler(usualHandler);
    describe(application);
    QApplication::setDesktopFileName(QStringLiteral("starbloom"));
    starbloom::loadTexts();
    readArguments(application);

    starbloom::sendLogToCategories();
    starbloom::QtDelayedCalls calls;
    starbloom::AppDelegate delegate(applicationFolder(), calls, starbloom::chooseShowSeed());
    // From within the event loop, where the application catches what a failing store throws.
    QMetaObject::invokeMethod(
        &application, [&delegate] { delegate.launch(); }, Qt::QueuedConnection);
    return QApplication::exec();
}
