// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/screenshots/IntroductionPictures.h"

#include "views/ColorWell.h"
#include "views/ParameterSlider.h"
#include "views/ResultLine.h"

#include <QAbstractButton>
#include <QDialog>
#include <QImageWriter>
#include <QToolButton>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// Sparks survive it, and so do the windows' texts.
constexpr int quality = 78;

/// Of the main window where the sidebar is shown with it.
constexpr double windowScale = 0.82;
constexpr double windowTop = 37.0;

constexpr QColor duskBlue(12, 26, 78);

/// Bursts in all sizes over a wide and low stage. Changes with the show's seed.
constexpr SliderPosition wideShow[] = {
    {Parameter::RocketBirth, 26.0F},
    {Parameter::RocketVelocity, 345.0F},
    {Parameter::RocketAngle, 1.7F},
    {Parameter::ExplodeVelocity, 95.0F},
};
constexpr auto wideMoment = 4450ms;

/// Rockets on their way, bursts and sparkles.
constexpr SliderPosition highShow[] = {
    {Parameter::RocketBirth, 22.0F}, {Parameter::RocketVelocity, 385.0F}, {Parameter::RocketAngle, 1.6F}};
constexpr auto highMoment = 5900ms;

/// So many bursts that they cover each other.
constexpr SliderPosition finale[] = {
    {Parameter::RocketBirth, 34.0F}, {Parameter::RocketVelocity, 385.0F},  {Parameter::RocketAngle, 1.5F},
    {Parameter::ExplodeLife, 28.0F}, {Parameter::ExplodeVelocity, 110.0F}, {Parameter::ExplodeGravity, 110.0F},
};
constexpr auto finaleMoment = 4500ms;

} // namespace

IntroductionPictures::IntroductionPictures(QString folder, const std::filesystem::path& home)
    : m_folder(std::move(folder))
    , m_driven(home)
    , m_window(m_driven.app().window()) {}

void IntroductionPictures::make() {
    m_driven.launch();
    takeStage();
    takeWindow();
    takeSidebar();
    takeExports();
    takePreferences();
    takeFinale();
}

void IntroductionPictures::takeStage() {
    resizeStage("600", "400");
    m_driven.showMoment(highShow, highMoment);
    PictureCanvas canvas;
    canvas.fill(stage().grab().toImage());
    save(2, canvas);
}

void IntroductionPictures::takeWindow() {
    resizeStage("680", "340");
    m_driven.showMoment(wideShow, wideMoment);
    const QWidget& onoff = m_driven.find<QWidget>("onoffView");
    takeWindow(1, {});
    takeWindow(3, {{&onoff, &toolButton("preferencesToolbar")}});
    takeWindow(4, {{&m_driven.find<QWidget>("sizeView")}});

    auto& well = m_driven.find<ColorWell>("colorWellT1");
    const QColor usual = well.color();
    chooseBackground(well, duskBlue);
    takeWindow(8, {{&onoff}, {&well}});
    chooseBackground(well, usual);
}

void IntroductionPictures::chooseBackground(ColorWell& well, const QColor& color) {
    well.setColor(color);
    emit well.colorPicked(color);
    m_driven.showMoment({}, wideMoment); // A show that stands still is not drawn anew by itself.
}

void IntroductionPictures::takeSidebar() {
    PictureCanvas opening;
    const PlacedWindow window = addMainWindow(opening, -208.0); // While its button can still be clicked.
    addFrames(opening, window, {{&toolButton("showsettingsToolbar")}});
    m_driven.find<QAction>("showsettingsToolbar").trigger();
    auto& sidebar = m_driven.app().sidebar();
    waitFor("the sidebar", [&] { return sidebar.isVisible(); });
    opening.addWindow(sidebar, {386.0, 34.0}, 0.6);
    save(5, opening);

    PictureCanvas groups;
    addMainWindow(groups, -300.0);
    groups.addWindow(sidebar, {304.0, windowTop}, 0.82);
    save(6, groups);

    PictureCanvas buttons;
    addMainWindow(buttons, -320.0);
    const double bottom = PictureCanvas::height - PictureCanvas::margin - sidebar.height();
    const PlacedWindow settings = buttons.addWindow(sidebar, {284.0, bottom}, 1.0);
    addFrames(buttons, settings,
              {{&m_driven.find<QWidget>("sparkleLifeSlider")},
               {&m_driven.find<QWidget>("resetButton")},
               {&m_driven.find<QWidget>("loadButton6"), &m_driven.find<QWidget>("saveButton6")}});
    save(7, buttons);
    sidebar.close();
}

PlacedWindow IntroductionPictures::addMainWindow(PictureCanvas& canvas, double left) {
    return canvas.addWindow(m_window, {left, windowTop}, windowScale);
}

void IntroductionPictures::takeExports() {
    m_driven.find<QAction>("savepictToolbar").trigger();
    auto& result = m_driven.app().window().resultLine();
    waitFor("the result", [&] { return !result.text().isEmpty(); });
    takeWindow(9, {{&m_driven.find<QWidget>("folderView"), &toolButton("savepictToolbar")}, {&result}});
    result.clear();

    m_driven.find<QAction>("fileExportsettings").trigger();
    const auto& menuBar = m_driven.find<QMenuBar>("menuBar");
    takeDialog(10, "exportWindow", {{{&menuBar, menuBar.actionGeometry(menuBar.actions().first())}}});
    m_driven.find<QAction>("fileExport2").trigger();
    takeDialog(11, "makemovieWindow", {{&toolButton("savemovieToolbar")}});
}

void IntroductionPictures::takePreferences() {
    m_driven.app().openPreferences();
    takeDialog(12, "preferencesWindow", {{&toolButton("preferencesToolbar")}});
}

void IntroductionPictures::takeFinale() {
    resizeStage("600", "400");
    m_driven.showMoment(finale, finaleMoment);
    PictureCanvas canvas;
    canvas.fill(stage().grab().toImage());
    save(13, canvas);
}

void IntroductionPictures::resizeStage(const char* width, const char* height) {
    auto& widthField = m_driven.find<QLineEdit>("widthFieldT1");
    auto& heightField = m_driven.find<QLineEdit>("heightFieldT1");
    replaceText(widthField, width);
    replaceText(heightField, height);
    heightField.clearFocus();
    const QSize wanted = QSize(widthField.text().toInt(), heightField.text().toInt()) * stage().devicePixelRatio();
    waitFor("the size", [&] { return stage().picture().size() == wanted; });
}

void IntroductionPictures::takeWindow(int page, const Frames& frames) {
    PictureCanvas canvas;
    const PlacedWindow window = canvas.addWindow(m_window);
    addFrames(canvas, window, frames);
    save(page, canvas);
}

void IntroductionPictures::takeDialog(int page, const char* name, const Frames& frames) {
    auto& dialog = m_driven.find<QDialog>(name);
    waitFor(name, [&] { return dialog.isVisible(); });
    PictureCanvas canvas;
    const PlacedWindow window = canvas.addWindow(m_window);
    canvas.dim();
    addFrames(canvas, window, frames);
    canvas.addWindow(dialog, Qt::AlignBottom); // It leaves the toolbar to be seen.
    save(page, canvas);
    dialog.close();
}

void IntroductionPictures::addFrames(PictureCanvas& canvas, const PlacedWindow& window, const Frames& frames) {
    for (const auto& each : frames) {
        QRectF around;
        for (const WidgetPart& part : each) {
            around |= window.rectOf(part);
        }
        canvas.addFrame(around);
    }
}

StageView& IntroductionPictures::stage() {
    return m_driven.find<StageView>("stage");
}

const QWidget& IntroductionPictures::toolButton(const char* name) {
    for (const QToolButton* each : m_window.findChildren<QToolButton*>()) {
        if (each->defaultAction() == &m_driven.find<QAction>(name)) {
            return *each;
        }
    }
    throw std::runtime_error(std::string("no such button: ") + name);
}

void IntroductionPictures::save(int page, const PictureCanvas& canvas) const {
    const QString file = QStringLiteral("%1/Screenshot_%2.jpg").arg(m_folder).arg(page, 3, 10, QLatin1Char('0'));
    QImageWriter writer(file);
    writer.setQuality(quality);
    writer.setOptimizedWrite(true);
    if (!writer.write(canvas.image())) {
        throw std::runtime_error("cannot write " + file.toStdString());
    }
}

} // namespace starbloom
