// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MovieProgress.h"

#include "shell/ControlTitles.h"
#include "shell/ModalPlace.h"
#include "ui_MovieProgress.h"

#include <algorithm>
#include <cmath>

namespace starbloom {

namespace {

QString leftText(const RecordingProgress& progress) {
    if (!progress.left) {
        return {};
    }
    const double seconds = std::chrono::duration<double>(*progress.left).count();
    return qtTrId("movieTimeLeft").arg(static_cast<int>(std::ceil(std::max(seconds, 0.0))));
}

} // namespace

MovieProgress::MovieProgress(QWidget& mainWindow)
    : QDialog(&mainWindow, Qt::Sheet | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , m_mainWindow(mainWindow)
    , m_ui(std::make_unique<Ui::MovieProgress>()) {
    m_ui->setupUi(this);
    setControlTitles(*this);
    setWindowTitle(qtTrId("movieProgressTitle"));
    setWindowModality(Qt::ApplicationModal);
    connect(m_ui->abortButton5, &QPushButton::clicked, this, &MovieProgress::abortClicked);
}

MovieProgress::~MovieProgress() = default;

void MovieProgress::openSheet() {
    RecordingProgress start;
    start.phase = RecordingPhase::Recording;
    start.percentText = "0.0%";
    showProgress(start);
    m_ui->abortButton5->setEnabled(true);
    placeBelowTop(*this, m_mainWindow);
    showAnew(*this);
}

void MovieProgress::showAborting() {
    m_ui->abortButton5->setEnabled(false);
}

void MovieProgress::closeSheet() {
    hide();
}

void MovieProgress::showProgress(const RecordingProgress& progress) {
    const bool writing = progress.phase == RecordingPhase::Writing;
    m_ui->label5->setText(writing ? qtTrId("movieWriting") : qtTrId("controlMakemovie5Label5"));
    const auto maximum = static_cast<double>(m_ui->progressIndicator5->maximum());
    m_ui->progressIndicator5->setValue(static_cast<int>(std::lround(progress.percent / 100.0 * maximum)));
    m_ui->perLabel5->setText(QString::fromStdString(progress.percentText));
    m_ui->leftLabel5->setText(leftText(progress));
}

} // namespace starbloom
