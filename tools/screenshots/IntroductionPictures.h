// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/screenshots/DrivenApplication.h"
#include "tools/screenshots/PictureCanvas.h"

#include <QString>

#include <initializer_list>

namespace starbloom {

class ColorWell;

/// Takes the pictures of the introduction, one for each page, from the running application: the windows that the page
/// tells of, with a frame around what it names. The texts are those that are loaded; the colour scheme is the one that
/// is in use. The same call gives the same pictures. Throws if something does not come up or cannot be written.
class IntroductionPictures {
public:
    IntroductionPictures(QString folder, const std::filesystem::path& home);

    void make();

private:
    /// Each frame goes around some widgets of one window.
    using Frames = std::initializer_list<std::initializer_list<WidgetPart>>;

    void takeStage();
    void takeWindow();
    void takeSidebar();
    void takeExports();
    void takePreferences();
    void takeFinale();

    void takeWindow(int page, const Frames& frames);
    PlacedWindow addMainWindow(PictureCanvas& canvas, double left);
    void takeDialog(int page, const char* name, const Frames& frames);
    void resizeStage(const char* width, const char* height);
    void chooseBackground(ColorWell& well, const QColor& color);
    static void addFrames(PictureCanvas& canvas, const PlacedWindow& window, const Frames& frames);
    StageView& stage();
    const QWidget& toolButton(const char* name);
    void save(int page, const PictureCanvas& canvas) const;

    QString m_folder;
    DrivenApplication m_driven;
    QWidget& m_window; ///< The main one.
};

} // namespace starbloom
