// SPDX-License-Identifier: GPL-3.0-or-later

// Pictures of the application, taken without a screen.
//
//   starbloom_screenshots FOLDER SUFFIX [--long-texts]
// writes FOLDER/main-windowSUFFIX.png and those of all other windows. --long-texts shows all texts 40 % longer than
// they are, as other languages have them.
//
//   starbloom_screenshots --introduction LANGUAGE FOLDER
// writes the pictures of the introduction's pages, FOLDER/Screenshot_001.jpg and so on, with a language's texts.
//
// Exit status: 0 done, 1 something did not come up or could not be written, 2 wrong arguments.

#include "shell/Application.h"
#include "shell/ColorScheme.h"
#include "shell/GuideWindow.h"
#include "shell/IntroductionWindow.h"
#include "tools/screenshots/DrivenApplication.h"
#include "tools/screenshots/IntroductionPictures.h"
#include "views/ResultLine.h"
#include "views/Texts.h"

#include <QAbstractButton>
#include <QColorDialog>
#include <QFile>
#include <QMessageBox>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTranslator>
#include <QWindow>

#include <cstdio>
#include <fstream>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// Half of the larger scale's screen is still enough for all windows side by side.
constexpr const char* screenSetup = R"({"screens": [{"name": "large", "x": 0, "y": 0, "width": 3840, "height": 2400,
    "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";

/// Makes each text longer and keeps its placeholders and mnemonics.
class LongTexts final : public QTranslator {
public:
    QString translate(const char* context, const char* key, const char* comment, int count) const override {
        QString text = QTranslator::translate(context, key, comment, count);
        if (text.size() > 1 && !QString::fromLatin1(key).endsWith(QStringLiteral("Unit"))) {
            text += QStringLiteral(" mehrlängereworte").repeated(8).left(std::max<qsizetype>(3, text.size() * 2 / 5));
        }
        return text;
    }

    bool isEmpty() const override { return false; }
};

/// Leads the application from window to window and takes the pictures.
class Tour {
public:
    Tour(QString folder, QString suffix, const std::filesystem::path& home)
        : m_folder(std::move(folder))
        , m_suffix(std::move(suffix))
        , m_home(home)
        , m_driven(home)
        , m_app(m_driven.app()) {}

    void make() {
        m_driven.launch();
        takeMainWindow();
        takeMenus();
        takeSidebar();
        takeGuide();
        takePreferences();
        takeExportWindow();
        takeMovieWindow();
        takeColorDialog();
        takeAlert("helpSupport", "supportAlert");
        takeAlert("helpUserguide", "userguideAlert");
        takeAlert("filePrint", "printAlert");
        takeAlert("appAbout", "aboutBox");
        takeSmallWindow();
        takeIntroduction();
    }

private:
    template <typename Widget>
    Widget& find(const char* name) {
        return m_driven.find<Widget>(name);
    }

    void takeMainWindow() {
        take("main-window", m_app.window());
        find<QAction>("savepictToolbar").trigger();
        waitFor("the result", [this] { return !m_app.window().resultLine().text().isEmpty(); });
        take("main-window-saved", m_app.window());
        m_app.window().resultLine().showError(QStringLiteral("/home/robin/Pictures: no space left on the device"));
        take("main-window-error", m_app.window());
        m_app.window().resultLine().clear();

        auto& width = find<QLineEdit>("widthFieldT1");
        replaceText(width, "479");
        take("main-window-invalid-size", m_app.window());
        replaceText(width, "640");
        width.clearFocus();
    }

    void takeMenus() {
        const QRegularExpression allMenus(QStringLiteral("Menu$"));
        for (QMenu* each : find<QMenuBar>("menuBar").findChildren<QMenu*>(allMenus)) {
            if (each->isEmpty()) {
                continue;
            }
            each->popup(m_app.window().geometry().topLeft());
            take("menu-" + each->objectName().toStdString(), *each);
            each->close();
        }
    }

    void takeSidebar() {
        m_app.sidebar().openSettings();
        take("settings-sidebar", m_app.sidebar());
        m_app.sidebar().close();
    }

    /// From top to bottom, as it is seen in its window.
    void takeGuide() {
        find<QAction>("emitterShow").trigger();
        auto& guide = find<GuideWindow>("guideWindow");
        waitFor("the guide's pictures", [&] { return !guide.isDrawing(); });
        QScrollBar& bar = *guide.findChild<QScrollArea*>()->verticalScrollBar();
        for (int part = 1; bar.value() < bar.maximum() || part == 1; ++part) {
            if (part > 1) {
                bar.setValue(bar.value() + bar.pageStep());
                waitFor("the guide's pictures", [&] { return !guide.isDrawing(); });
            }
            take("guide-" + std::to_string(part), guide);
        }
        guide.close();
    }

    void takePreferences() {
        m_app.openPreferences();
        auto& window = find<QDialog>("preferencesWindow");
        auto& pages = find<QTabWidget>("tabView1p");
        for (int page = 0; page < pages.count(); ++page) {
            pages.setCurrentIndex(page);
            take("preferences-" + std::to_string(page + 1), window);
        }
        window.close();
    }

    void takeExportWindow() {
        find<QAction>("fileExportsettings").trigger();
        auto& window = find<QDialog>("exportWindow");
        auto& name = find<QLineEdit>("fileField3");
        take("picture-settings", window);
        replaceText(name, ".hidden");
        take("picture-settings-invalid-name", window);
        replaceText(name, "Picture");
        window.close();
    }

    void takeMovieWindow() {
        find<QAction>("fileExport2").trigger();
        auto& window = find<QDialog>("makemovieWindow");
        take("movie-settings", window);
        window.close();
    }

    void takeAlert(const char* command, const char* name) {
        find<QAction>(command).trigger();
        auto& box = find<QMessageBox>(name);
        take(name, box);
        box.close();
    }

    void takeColorDialog() {
        find<QAbstractButton>("colorWellT1").click();
        auto* dialog = m_app.window().findChild<QColorDialog*>();
        take("background-color", *dialog);
        dialog->close();
    }

    void takeSmallWindow() {
        // A window that becomes smaller just after a size was typed keeps the stage at that size.
        const QDeadlineTimer answered(1s);
        waitFor("the size typed last", [&] { return answered.hasExpired(); });
        m_app.window().resize(m_app.window().minimumSize());
        take("main-window-least-size", m_app.window());
    }

    void takeIntroduction() {
        Stores stores((AppFolder(m_home / "introduction")));
        IntroductionWindow introduction(stores, m_app.window());
        introduction.prepareFirstPage();
        introduction.showIntroduction();
        do {
            take("introduction-" + std::to_string(introduction.introductionPage()), introduction);
            introduction.forward7Clicked();
        } while (introduction.introductionPage() < IntroductionPages::count);
        take("introduction-" + std::to_string(introduction.introductionPage()), introduction);
    }

    void take(const std::string& name, QWidget& window) {
        waitFor(name.c_str(), [&] { return window.isVisible() && window.windowHandle()->isExposed(); });
        const QString file = m_folder + u'/' + QString::fromStdString(name) + m_suffix + QStringLiteral(".png");
        if (!window.grab().save(file)) {
            throw std::runtime_error("cannot write " + file.toStdString());
        }
    }

    QString m_folder;
    QString m_suffix;
    std::filesystem::path m_home;
    DrivenApplication m_driven;
    AppDelegate& m_app;
};

QtMessageHandler usualHandler = nullptr;

/// The platform without a screen tells of each thing that only a screen has.
void leaveOutPlatform(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (!message.startsWith(QStringLiteral("This plugin does not support"))) {
        usualHandler(type, context, message);
    }
}

void useLongTexts() {
    auto* texts = new LongTexts;
    texts->setParent(QCoreApplication::instance());
    if (!texts->load(QStringLiteral(":/texts/starbloom_en.qm"))) {
        throw std::runtime_error("no texts");
    }
    QCoreApplication::installTranslator(texts);
}

void speak(const QString& language) {
    QLocale::setDefault(QLocale(language)); // For numbers.
    loadTexts(QLocale(language));
    if (textsLanguage() != language) {
        throw std::runtime_error("no texts in " + language.toStdString());
    }
}

int takeIntroduction(const QString& language, const QString& folder, const std::filesystem::path& home) {
    speak(language);
    const ColorScheme colorScheme;
    IntroductionPictures(folder, home).make();
    return 0;
}

/// The third argument, if there is one, is a language, or asks for longer English texts.
int takeWindows(const QStringList& arguments, const std::filesystem::path& home) {
    const QString texts = arguments.value(2, QStringLiteral("en"));
    const bool longTexts = texts == QStringLiteral("--long-texts");
    speak(longTexts ? QStringLiteral("en") : texts);
    if (longTexts) {
        useLongTexts();
    }
    const ColorScheme colorScheme;
    Tour(arguments[0], arguments[1], home).make();
    return 0;
}

int run(int argc, char** argv, const QTemporaryDir& folder) {
    usualHandler = qInstallMessageHandler(leaveOutPlatform);
    const Application application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Starbloom"));
    QApplication::setCursorFlashTime(0); // A picture has the cursor or it does not, but the same each time.
    const std::filesystem::path home = QFile::encodeName(folder.path()).toStdString();
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() == 3 && arguments[0] == QStringLiteral("--introduction")) {
        return takeIntroduction(arguments[1], arguments[2], home);
    }
    if (arguments.size() != 2 && arguments.size() != 3) {
        std::fputs("usage: starbloom_screenshots FOLDER SUFFIX [LANGUAGE | --long-texts]\n"
                   "       starbloom_screenshots --introduction LANGUAGE FOLDER\n",
                   stderr);
        return 2;
    }
    return takeWindows(arguments, home);
}

} // namespace

} // namespace starbloom

int main(int argc, char** argv) {
    try {
        const QTemporaryDir home;
        for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
            qputenv(variable, QFile::encodeName(home.path()));
        }
        const QString screen = home.filePath(QStringLiteral("screen.json"));
        std::ofstream(QFile::encodeName(screen).toStdString()) << starbloom::screenSetup;
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screen));
        return starbloom::run(argc, argv, home);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "starbloom_screenshots: %s\n", failure.what());
        return 1;
    }
}
