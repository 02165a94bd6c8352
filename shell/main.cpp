// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"
#include "shell/Application.h"
#include "shell/ColorScheme.h"
#include "shell/DesktopFilePanel.h"
#include "shell/FileManager.h"
#include "shell/LoadedEncoders.h"
#include "shell/LoadedPrintSystem.h"
#include "shell/LogCategories.h"
#include "shell/Preparation.h"
#include "shell/QtDelayedCalls.h"
#include "shell/ScreenRenderer.h"
#include "shell/ShowSeed.h"
#include "shell/Spark.h"
#include "shell/TerminationSignals.h"
#include "views/Texts.h"

#include <QCommandLineParser>
#include <QFile>
#include <QStandardPaths>
#include <QThreadPool>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace {

void describe(QCoreApplication& application) {
    application.setApplicationName(QStringLiteral("Starbloom"));
    application.setApplicationVersion(QStringLiteral(STARBLOOM_VERSION));
    starbloom::loadTexts();
}

/// Answers --help and --version, and an argument that is none; all three end the program.
void readArguments(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(qtTrId("applicationDescription"));
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

/// The desktop's own answer.
class DesktopDocuments final : public starbloom::DocumentsFolder {
public:
    std::filesystem::path documentsFolder() const override {
        return QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).toStdString();
    }
};

/// Where the program keeps its files. A user without a home gets a show that forgets.
starbloom::AppFolder applicationFolder() {
    const auto dataHome = starbloom::AppFolder::dataHome([](const char* name) -> std::optional<std::string> {
        return qEnvironmentVariableIsSet(name) ? std::optional(qgetenv(name).toStdString()) : std::nullopt;
    });
    return starbloom::AppFolder(dataHome ? dataHome.value() : std::filesystem::path());
}

} // namespace

int main(int argc, char** argv) {
    starbloom::ScreenRenderer::prepareEnvironment(); // Before there are threads.
    if (!hasDisplay(argc, argv)) {
        return refuse(argc, argv);
    }
    starbloom::sendLogToCategories();
    usualHandler = qInstallMessageHandler(refuseInsteadOfAborting);
    const starbloom::AppFolder folder = applicationFolder();
    starbloom::Stores stores(folder);
    // With arguments it may be that only the version is asked for, which ends the program at once.
    const bool launches = argc == 1;
    std::jthread preparation = starbloom::startAside([&] { starbloom::prepare(launches ? &stores : nullptr); });
    starbloom::Application application(argc, argv);
    qInstallMessageHandler(usualHandler);
    if (preparation.joinable()) {
        preparation.join();
    }
    const std::jthread fonts = launches ? starbloom::startLookingThroughFonts() : std::jthread();
    describe(application);
    QApplication::setDesktopFileName(QStringLiteral("net.starbloom.Starbloom"));
    readArguments(application);

    const starbloom::ColorScheme colorScheme;
    starbloom::QtDelayedCalls calls;
    starbloom::DesktopFilePanel filePanel;
    const DesktopDocuments documents;
    starbloom::DesktopFileManager fileManager;
    starbloom::LoadedEncoders encoders;
    starbloom::LoadedPrintSystem printSystem;
    starbloom::AppDelegate delegate(
        folder, std::move(stores),
        {calls, filePanel, documents, fileManager, encoders, printSystem, starbloom::chooseShowSeed()});
    // From within the event loop, where the application catches what a failing store throws.
    QMetaObject::invokeMethod(
        &application, [&delegate] { delegate.launch(); }, Qt::QueuedConnection);
    const starbloom::TerminationSignals endings;
    QObject::connect(&endings, &starbloom::TerminationSignals::received, &application, [&] { delegate.terminate(); });
    // Both later than the first frame; the encoders before anybody has found the button.
    starbloom::ScreenRenderer screenRenderer(*delegate.window().findChild<starbloom::StageView*>());
    calls.callAfter(std::chrono::milliseconds(300), [&] { screenRenderer.choose(starbloom::spark()); });
    calls.callAfter(std::chrono::seconds(2),
                    [&] { QThreadPool::globalInstance()->start([&] { encoders.prepare(); }); });
    const int status = QApplication::exec();
    QThreadPool::globalInstance()->waitForDone();
    return status;
}
