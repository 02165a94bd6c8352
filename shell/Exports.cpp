// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Exports.h"

#include "engine/panel/FireworksController.h"
#include "shell/MainWindow.h"
#include "shell/Menus.h"
#include "shell/SliderPanel.h"
#include "shell/Toolbar.h"

#include <QAction>
#include <QApplication>

#include <utility>

namespace starbloom {

namespace {

/// Where the switch lies that has even the first picture numbered, in the switches' mirror.
constexpr std::size_t numberingSwitch = 3;

/// Where the preferences' folder for exports lies in theirs.
constexpr std::size_t destinationFolder = 1;

QString shownName(const std::filesystem::path& file) {
    return QString::fromStdString(pathText(file.filename()));
}

QString secondsText(double seconds) {
    return QLocale().toString(seconds, 'f', 1);
}

} // namespace

Exports::Exports(Show show, const Surroundings& surroundings, const AppFolder& folder, Stores& stores,
                 MenuSnapshot& menus)
    : m_show(show)
    , m_surroundings(surroundings)
    , m_stores(stores)
    , m_folder(show.window.toolbar().pathControl(), surroundings.filePanel, menus, stores, surroundings.documents,
               folder.filePath3())
    , m_exportWindow(folder.filePath4(), stores, menus, surroundings.calls, show.window)
    , m_gate(show.window.menus(), show.window.toolbar(),
             {[this] { return m_folder.isKnown(); }, [this] { return m_exportWindow.nameIsValid(); }})
    , m_pictureCommand(surroundings.encoders, show.window, surroundings.filePanel)
    , m_movieWindow({show.controller, show.panel, [this] { return m_show.stage.rect().size(); }}, stores, menus,
                    surroundings.calls, show.window)
    , m_movieCommand({.encoders = surroundings.encoders,
                      .filePanel = surroundings.filePanel,
                      .calls = surroundings.calls,
                      .clock = surroundings.clock,
                      .startFolder = [this] { return movieFolder(); },
                      .journal = folder.recordingJournal()},
                     show.stage, show.controller, m_movieWindow, show.window)
    , m_movieRescue(surroundings.encoders, folder.recordingJournal(), show.window) {
    const auto validate = [this] { validateImageExport(); };
    QObject::connect(&m_folder, &ExportFolder::changed, &m_exportWindow, validate);
    QObject::connect(&m_exportWindow, &ExportWindow::changed, &m_exportWindow, validate);
    connectPictures();
    connectMovies();
}

void Exports::connectPictures() {
    const MainWindow& window = m_show.window;
    QObject::connect(&window.menus().action(Command::FileExportsettings), &QAction::triggered, &m_exportWindow,
                     &ExportWindow::showExportFrame);
    for (const QAction* action :
         {&window.menus().action(Command::FileExport), &window.toolbar().button(ToolItem::Savepict)}) {
        QObject::connect(action, &QAction::triggered, &m_pictureCommand, [this] { savePicture(); });
    }
    ResultLine& line = window.resultLine();
    QObject::connect(&m_pictureCommand, &PictureCommand::failed, &line, &ResultLine::showError);
    QObject::connect(&m_pictureCommand, &PictureCommand::saved, &line,
                     [this, &line](const std::filesystem::path& file) {
                         line.showResult(qtTrId("pictureSavedResult").arg(shownName(file)), {linkToFolder(file)});
                     });
}

void Exports::connectMovies() {
    const MainWindow& window = m_show.window;
    for (const QAction* action :
         {&window.menus().action(Command::FileExport2), &window.toolbar().button(ToolItem::Savemovie)}) {
        QObject::connect(action, &QAction::triggered, &m_movieWindow, [this] {
            if (!m_movieCommand.isBusy()) {
                m_movieWindow.openMovieSettings();
            }
        });
    }
    ResultLine& line = window.resultLine();
    QObject::connect(&m_movieCommand, &MovieCommand::failed, &line,
                     [&line](const QString& why) { line.showError(qtTrId("movieFailedResult").arg(why)); });
    QObject::connect(
        &m_movieCommand, &MovieCommand::saved, &line,
        [this](const WrittenMovie& movie, std::int64_t missed, bool ranOut) { tellSaved(movie, missed, ranOut); });
    QObject::connect(&m_movieRescue, &MovieRescue::failed, &line, &ResultLine::showError);
    QObject::connect(&m_movieRescue, &MovieRescue::rescued, &line, [this](const RecoveredMovie& movie) {
        tellMovie(qtTrId("movieRescuedResult")
                      .arg(shownName(movie.path), secondsText(movie.seconds), QString::number(movie.frames)),
                  movie.path);
    });
}

void Exports::tellSaved(const WrittenMovie& movie, std::int64_t missed, bool ranOutOfMemory) {
    // All at once: a name may look like a placeholder.
    const QString name = shownName(movie.path);
    const QString seconds = secondsText(movie.seconds);
    const QString frames = QString::number(movie.frames);
    QString message = qtTrId("movieSavedResult").arg(name, seconds, frames);
    if (ranOutOfMemory) {
        message = qtTrId("movieSavedShortResult").arg(name, seconds, frames);
    } else if (missed > 0) {
        message = qtTrId("movieSavedWithMissesResult").arg(name, seconds, frames, QString::number(missed));
    }
    tellMovie(message, movie.path);
}

void Exports::tellMovie(const QString& message, const std::filesystem::path& file) {
    const auto play = [this, file] { m_surroundings.fileManager.open(urlOf(file)); };
    m_show.window.resultLine().showResult(message, {linkToFolder(file), {qtTrId("moviePlay"), play}});
}

ResultLine::LinkTo Exports::linkToFolder(const std::filesystem::path& file) const {
    return {qtTrId("showInFolder"), [this, file] { m_surroundings.fileManager.showInFolder(file); }};
}

std::optional<std::filesystem::path> Exports::movieFolder() const {
    return startFolder({}, m_stores.preferenceValue(destinationFolder), m_surroundings.documents.documentsFolder());
}

void Exports::savePicture() {
    if (!m_folder.shown()) {
        // The folder was not there at the launch and is now, else the command would be disabled: a disk was plugged in.
        m_folder.loadSharedFolder();
    }
    const auto folder = m_folder.shown();
    if (!folder) {
        return;
    }
    auto capture = m_show.stage.capture();
    const ShowNote note = showNote(capture);
    m_pictureCommand.savePicture({.image = std::move(capture.image),
                                  .folder = *folder,
                                  .name = m_exportWindow.name(),
                                  .format = m_exportWindow.format(),
                                  .compression = m_exportWindow.compression(),
                                  .numbered = m_stores.checkboxValue(numberingSwitch) == "1",
                                  .note = note});
}

ShowNote Exports::showNote(const StageView::Capture& capture) const {
    const ShowNote note{.program = QApplication::applicationName().toLower().toStdString(),
                        .version = QApplication::applicationVersion().toStdString(),
                        .positions = m_show.controller.appliedPositions(),
                        .seed = m_surroundings.seed,
                        .moment = capture.moment,
                        .stage = m_show.stage.size(),
                        .launchPoint = m_show.controller.mortor().emitterPosition,
                        .background = m_show.controller.rootLayer().backgroundColor,
                        .steady = capture.steady};
    return note;
}

} // namespace starbloom
