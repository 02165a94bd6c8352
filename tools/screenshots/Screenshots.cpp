// SPDX-License-Identifier: GPL-3.0-or-later

// Pictures of all windows of the application, taken without a screen: starbloom_screenshots FOLDER SUFFIX
// [--long-texts] writes FOLDER/main-windowSUFFIX.png and the others. --long-texts shows all texts 40 % longer than they
// are, as other languages have them. Exit status: 0 done, 1 something did not come up or could not be written, 2 wrong
// arguments.

#include "shell/AppDelegate.h"
#include "shell/Application.h"
#include "shell/ColorScheme.h"
#include "shell/LoadedEncoders.h"
#include "shell/QtDelayedCalls.h"
#include "views/ParameterSlider.h"
#include "views/PathControl.h"
#include "views/ResultLine.h"
#include "views/Texts.h"

#include <QColorDialog>
#include <QDeadlineTimer>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTranslator>
#include <QWindow>

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t showSeed = 7;

/// When many bursts are open at once, with the positions below. Changes with them and with the seed.
constexpr std::chrono::milliseconds fineMoment{5500};

constexpr std::pair<Parameter, float> positions[] = {
    {Parameter::RocketBirth, 22.0F},
    {Parameter::RocketVelocity, 430.0F},
    {Parameter::RocketAngle, 1.6F},
};

/// Shown instead of the temporary folder, whose name is another one each time.
const auto documents = QStringLiteral("/home/robin/Documents");
const auto pictures = QStringLiteral("/home/robin/Pictures/Fireworks");

/// Half of the larger scale's screen is still enough for all windows side by side.
constexpr const char* screenSetup = R"({"screens": [{"name": "large", "x": 0, "y": 0, "width": 3840, "height": 2400,
    "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})";

/// The answers of a desktop whose user always chooses the same folder.
class Desktop final : public FilePanel, public DocumentsFolder, public FileManager {
public:
    explicit Desktop(std::filesystem::path folder)
        : m_folder(std::move(folder)) {}

    void ask(const FilePanelRequest& /*request*/,
             std::function<void(std::optional<std::filesystem::path> choice)> answer) override {
        answer(m_folder);
    }

    std::filesystem::path documentsFolder() const override { return documents.toStdString(); }

    void showInFolder(const std::filesystem::path& /*file*/) override {}

    void open(const QUrl& /*url*/) override {}

private:
    std::filesystem::path m_folder;
};

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

template <typename Condition>
void waitFor(const char* what, Condition condition) {
    const QDeadlineTimer deadline(10s);
    while (!condition()) {
        if (deadline.hasExpired()) {
            throw std::runtime_error(std::string("waited in vain for ") + what);
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    QCoreApplication::processEvents();
}

/// Has no printer, so that the alert shows.
class NoPrinting final : public PrintSystem {
public:
    bool printPlain(QWidget&, Finished) override { return false; }

    bool setUpPage(QWidget&, Finished) override { return false; }
};

/// Leads the application from window to window and takes the pictures.
class Tour {
public:
    Tour(QString folder, QString suffix, const std::filesystem::path& home)
        : m_folder(std::move(folder))
        , m_suffix(std::move(suffix))
        , m_desktop(home / "pictures")
        , m_app(AppFolder(home / "data"), {m_calls, m_desktop, m_desktop, m_desktop, m_encoders, m_printing, showSeed,
                                           [this] { return m_now; }}) {
        std::filesystem::create_directories(home / "data");
        std::filesystem::create_directories(home / "pictures");
    }

    void make() {
        launch();
        takeMainWindow();
        takeMenus();
        takeSidebar();
        takePreferences();
        takeExportWindow();
        takeMovieWindow();
        takeColorDialog();
        takeAlert("helpSupport", "supportAlert");
        takeAlert("helpUserguide", "userguideAlert");
        takeAlert("filePrint", "printAlert");
        takeAlert("appAbout", "aboutBox");
        takeSmallWindow();
    }

private:
    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = m_app.window().findChild<Widget*>(QString::fromUtf8(name));
        if (found == nullptr) {
            throw std::runtime_error(std::string("no such widget: ") + name);
        }
        return *found;
    }

    void launch() {
        m_app.launch();
        auto& stage = find<StageView>("stage");
        waitFor("the stage", [&] { return stage.renderedFrames() > 0; });
        for (const auto& [parameter, position] : positions) {
            auto& slider = find<ParameterSlider>(row(parameter).name.data());
            slider.setPosition(position);
            emit slider.moved();
        }
        stage.restart();
        m_now += fineMoment;
        constexpr std::chrono::duration<double> wanted = fineMoment;
        waitFor("the moment", [&] { return stage.shownTime() > wanted.count() - 0.01; });
        find<PathControl>("pathControlT1").click();
        find<PathControl>("pathControlT1").setStringValue(pictures);
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

    /// As a user does it.
    static void replaceText(QLineEdit& field, const char* text) {
        field.setFocus();
        field.selectAll();
        field.insert(QString::fromUtf8(text));
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
    std::chrono::nanoseconds m_now = 1h;
    QtDelayedCalls m_calls;
    Desktop m_desktop;
    LoadedEncoders m_encoders;
    NoPrinting m_printing;
    AppDelegate m_app;
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

int run(int argc, char** argv, const QTemporaryDir& home) {
    usualHandler = qInstallMessageHandler(leaveOutPlatform);
    const Application application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Starbloom"));
    QApplication::setCursorFlashTime(0); // A picture has the cursor or it does not, but the same each time.
    loadTexts(QLocale(QLocale::English));
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    const bool longTexts = arguments.size() == 3 && arguments[2] == QStringLiteral("--long-texts");
    if (arguments.size() != 2 && !longTexts) {
        std::fputs("usage: starbloom_screenshots FOLDER SUFFIX [--long-texts]\n", stderr);
        return 2;
    }
    if (longTexts) {
        useLongTexts();
    }
    const ColorScheme colorScheme;
    Tour(arguments[0], arguments[1], QFile::encodeName(home.path()).toStdString()).make();
    return 0;
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
