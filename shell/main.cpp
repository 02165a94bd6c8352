// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"
#include "shell/LogCategories.h"
#include "shell/ShowSeed.h"

#include <QApplication>
#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
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
}

/// Whether there can be a window. Asked before Qt is, which would end the program with a core dump.
bool hasDisplay(int argc, char** argv) {
    const auto isPlatformOption = [](std::string_view argument) {
        return argument == "-platform" || argument == "--platform";
    };
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || std::any_of(argv, argv + argc, isPlatformOption);
}

constexpr const char* noDisplay =
    "starbloom: no display to show a window on; starbloom-render makes pictures and movies without one\n";

int refuse(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    describe(application);
    readArguments(application);
    std::fputs(noDisplay, stderr);
    return 1;
}

QtMessageHandler usualHandler = nullptr;

/// Stands in while Qt opens the display. A display that does not answer is fatal to Qt, which would explain itself at
/// length and dump core.
void refuseInsteadOfAborting(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtFatalMsg) {
        std::fputs(noDisplay, stderr);
        std::_Exit(1);
    }
    const bool aboutDisplay = context.category != nullptr && std::string_view(context.category).starts_with("qt.qpa");
    if (!aboutDisplay) {
        usualHandler(type, context, message);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (!hasDisplay(argc, argv)) {
        return refuse(argc, argv);
    }
    usualHandler = qInstallMessageHandler(refuseInsteadOfAborting);
    QApplication application(argc, argv);
    qInstallMessageHandler(usualHandler);
    describe(application);
    QApplication::setDesktopFileName(QStringLiteral("starbloom"));
    readArguments(application);

    starbloom::sendLogToCategories();
    starbloom::AppDelegate delegate(starbloom::chooseShowSeed());
    delegate.launch();
    return QApplication::exec();
}
