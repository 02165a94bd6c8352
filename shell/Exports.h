// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/files/MenuSnapshot.h"
#include "persistence/stores/AppFolder.h"
#include "persistence/stores/Stores.h"
#include "shell/ExportFolder.h"
#include "shell/ExportGate.h"
#include "shell/ExportWindow.h"
#include "shell/MovieCommand.h"
#include "shell/MovieRescue.h"
#include "shell/MovieWindow.h"
#include "shell/PictureCommand.h"
#include "shell/Surroundings.h"
#include "views/ResultLine.h"

#include <filesystem>
#include <optional>

namespace starbloom {

class MainWindow;
class SliderPanel;

/// All that makes files of the show: the folder, the two settings windows, the two commands, and the rescue of a movie
/// that an earlier run could not finish. Connects them with the main window, which tells how each command went.
///
/// What it refers to must outlive it. GUI thread.
class Exports {
public:
    /// What is exported, and where the commands are.
    struct Show {
        MainWindow& window;
        StageView& stage;
        FireworksController& controller;
        SliderPanel& panel;
    };

    Exports(Show show, const Surroundings& surroundings, const AppFolder& folder, Stores& stores, MenuSnapshot& menus);

    // Steps of the launch.
    void loadSharedFolder() { m_folder.loadSharedFolder(); }

    void loadSettings3() { m_exportWindow.loadSettings3(); }

    /// Offers to rescue a movie, if there is one.
    void offerRescue() { m_movieRescue.offer(); }

    /// Enables the commands, if exporting is possible.
    void validateImageExport() { m_gate.validateImageExport(); }

    /// Exports a picture of this moment, with the settings as they are in the export window.
    void savePicture();

    /// The program has to end: a movie that is being made is finished with what there is.
    void finishNow() { m_movieCommand.finishNow(); }

private:
    void connectPictures();
    void connectMovies();
    ShowNote showNote(const StageView::Capture& capture) const;
    std::optional<std::filesystem::path> movieFolder() const;
    void tellSaved(const WrittenMovie& movie, std::int64_t missed, bool ranOutOfMemory);
    void tellMovie(const QString& message, const std::filesystem::path& file);
    ResultLine::LinkTo linkToFolder(const std::filesystem::path& file) const;

    Show m_show;
    Surroundings m_surroundings;
    Stores& m_stores;
    ExportFolder m_folder;
    ExportWindow m_exportWindow;
    ExportGate m_gate;
    PictureCommand m_pictureCommand;
    MovieWindow m_movieWindow;
    MovieCommand m_movieCommand;
    MovieRescue m_movieRescue;
};

} // namespace starbloom
