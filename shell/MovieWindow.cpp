// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MovieWindow.h"

#include "engine/panel/FireworksController.h"
#include "persistence/stores/NumberText.h"
#include "shell/ButtonText.h"
#include "shell/ControlTitles.h"
#include "shell/ModalPlace.h"
#include "shell/SliderPanel.h"
#include "ui_MovieWindow.h"

#include <QGuiApplication>
#include <QLocale>

#include <algorithm>
#include <string>
#include <utility>

namespace starbloom {

namespace {

/// How long the save button stays disabled, which keeps the user from saving twice in a row.
constexpr std::chrono::milliseconds saveRest{2000};

/// The launch rate that a fade-in begins with, on the slider's scale.
constexpr double fadeInStart = 1.0;

/// Where the choices lie in the preferences.
enum Position : std::size_t { RatePosition = 4, LengthPosition, FadeInPosition, FadeInLengthPosition };

std::string keyOf(Position position) {
    return "Value0" + std::to_string(position);
}

} // namespace

MovieWindow::MovieWindow(Show show, Stores& stores, MenuSnapshot& menus, DelayedCalls& calls, QWidget& mainWindow)
    : QDialog(&mainWindow)
    , m_show(std::move(show))
    , m_stores(stores)
    , m_menus(menus)
    , m_calls(calls)
    , m_mainWindow(mainWindow) {
    setObjectName(QStringLiteral("makemovieWindow"));
    setWindowModality(Qt::ApplicationModal);
}

MovieWindow::~MovieWindow() = default;

void MovieWindow::makeControls() {
    m_ui = std::make_unique<Ui::MovieWindow>();
    m_ui->setupUi(this);
    const auto fill = [](QComboBox& popup, int count, std::string (*title)(int)) {
        for (int i = 0; i < count; ++i) {
            popup.addItem(QString::fromStdString(title(i)));
        }
    };
    fill(*m_ui->popupButton4a, static_cast<int>(movieRates.size()), movieRateTitle);
    fill(*m_ui->popupButton4b, movieLengthCount, movieLengthTitle);
    fill(*m_ui->popupButton4c, fadeInLengthCount, fadeInLengthTitle);
    setControlTitles(*this);
    setButtonText(orange, *m_ui->loadButton4);
    setButtonText(skyBlue, *m_ui->saveButton4);
    connect(m_ui->popupButton4a, &QComboBox::activated, this, &MovieWindow::showMemory);
    connect(m_ui->popupButton4b, &QComboBox::activated, this, &MovieWindow::showMemory);
    connect(m_ui->popupButton4b, &QComboBox::activated, this, &MovieWindow::validateCreate);
    connect(m_ui->popupButton4c, &QComboBox::activated, this, &MovieWindow::validateCreate);
    connect(m_ui->fadeinButton4, &QCheckBox::clicked, this, &MovieWindow::fadein4Selected);
    connect(m_ui->loadButton4, &QPushButton::clicked, this, &MovieWindow::load4Clicked);
    connect(m_ui->saveButton4, &QPushButton::clicked, this, &MovieWindow::save4Clicked);
    connect(m_ui->closeButton4, &QPushButton::clicked, this, &MovieWindow::close4Clicked);
    connect(m_ui->createButton4, &QPushButton::clicked, this, &MovieWindow::createClicked);
}

void MovieWindow::openMovieSettings() {
    if (m_open) {
        return;
    }
    if (m_ui == nullptr) {
        makeControls();
    }
    emit opening();
    m_show.controller.setControls(false);
    m_show.panel.setPresetsEnabled(false);
    m_birthRate = static_cast<double>(m_show.panel.position(Parameter::RocketBirth));
    loadMovieSettings();
    m_menus.saveMenuStatus();
    placeBelowTop(*this, m_mainWindow);
    showAnew(*this);
    m_open = true;
}

void MovieWindow::loadMovieSettings() {
    const auto stored = [this](Position position) {
        return static_cast<int>(integerValue(m_stores.preferenceValue(position)));
    };
    const auto select = [](QComboBox& popup, int index) {
        popup.setCurrentIndex(std::clamp(index, 0, popup.count() - 1));
    };
    select(*m_ui->popupButton4a, stored(RatePosition));
    select(*m_ui->popupButton4b, stored(LengthPosition));
    m_ui->fadeinButton4->setChecked(stored(FadeInPosition) == 1);
    select(*m_ui->popupButton4c, stored(FadeInLengthPosition));
    showFadeIn();
    validateCreate();
    showMemory();
}

MovieSettings MovieWindow::settings() const {
    return {.rateIndex = m_ui->popupButton4a->currentIndex(),
            .lengthIndex = m_ui->popupButton4b->currentIndex(),
            .fadeIn = m_ui->fadeinButton4->isChecked(),
            .fadeInIndex = m_ui->popupButton4c->currentIndex()};
}

QString MovieWindow::makeMemoryString() const {
    const QSize stage = m_show.stageSize();
    const double bytes = settings().memoryBytes(stage.width(), stage.height(), qGuiApp->devicePixelRatio() > 1.0);
    return qtTrId("movieMemory")
        .arg(QString::fromStdString(megabytesText(bytes)).replace(u'.', QLocale().decimalPoint()));
}

void MovieWindow::showMemory() {
    m_ui->label4d->setText(makeMemoryString());
}

void MovieWindow::fadein4Selected() {
    showFadeIn();
    validateCreate();
}

void MovieWindow::showFadeIn() {
    const bool on = m_ui->fadeinButton4->isChecked();
    m_ui->popupButton4c->setEnabled(on);
    m_show.controller.setLaunchBirth(on ? fadeInStart : m_birthRate);
}

void MovieWindow::validateCreate() {
    m_ui->createButton4->setEnabled(settings().canCreate());
}

void MovieWindow::load4Clicked() {
    loadMovieSettings();
}

void MovieWindow::save4Clicked() {
    m_ui->saveButton4->setEnabled(false);
    m_pendingEnable = PendingCall(m_calls, saveRest, [this] { m_ui->saveButton4->setEnabled(true); });
    saveMovieSettings2();
}

void MovieWindow::saveMovieSettings2() {
    const MovieSettings chosen = settings();
    m_stores.saveData1(std::to_string(chosen.rateIndex), keyOf(RatePosition));
    m_stores.saveData1(std::to_string(chosen.lengthIndex), keyOf(LengthPosition));
    m_stores.saveData1(chosen.fadeIn ? "1" : "0", keyOf(FadeInPosition));
    m_stores.saveData1(std::to_string(chosen.fadeInIndex), keyOf(FadeInLengthPosition));
    m_stores.reloadOnlyDB1();
}

void MovieWindow::handOver() {
    hide();
    m_open = false;
}

void MovieWindow::giveBack() {
    m_show.controller.setLaunchBirth(m_birthRate);
    m_show.controller.setControls(true);
    m_show.panel.setPresetsEnabled(true);
    m_menus.loadMenuStatus();
}

void MovieWindow::close4Clicked() {
    if (m_open) {
        giveBack();
        handOver();
    }
}

void MovieWindow::reject() {
    close4Clicked();
}

} // namespace starbloom
