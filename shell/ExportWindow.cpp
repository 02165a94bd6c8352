// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ExportWindow.h"

#include "base/Log.h"
#include "export/picture/FileNames.h"
#include "persistence/files/ExportSettings.h"
#include "shell/ButtonText.h"
#include "shell/ControlTitles.h"
#include "shell/ModalPlace.h"
#include "shell/ValidField.h"
#include "ui_ExportWindow.h"
#include "views/ControlLook.h"

#include <utility>

namespace starbloom {

namespace {

/// How long the save button stays disabled, which keeps the user from saving twice in a row.
constexpr std::chrono::milliseconds saveRest{1500};

constexpr std::size_t shortestName = 1;

QString shown(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

ExportWindow::ExportWindow(std::filesystem::path settingsFile, Stores& stores, MenuSnapshot& menus, DelayedCalls& calls,
                           QWidget& mainWindow)
    : QDialog(&mainWindow)
    , m_file(std::move(settingsFile))
    , m_stores(stores)
    , m_menus(menus)
    , m_calls(calls)
    , m_mainWindow(mainWindow)
    , m_ui(std::make_unique<Ui::ExportWindow>()) {
    m_ui->setupUi(this);
    // The box knows on which side the desktop has which button.
    m_ui->buttonBox->addButton(m_ui->saveButton3, QDialogButtonBox::AcceptRole);
    m_ui->buttonBox->addButton(m_ui->cancelButton3, QDialogButtonBox::RejectRole);
    m_ui->nameNote3->setText(qtTrId("exportNameNote"));
    // Its place is kept, so that nothing jumps while a person types.
    QSizePolicy kept = m_ui->nameNote3->sizePolicy();
    kept.setRetainSizeWhenHidden(true);
    m_ui->nameNote3->setSizePolicy(kept);
    setControlTitles(*this);
    setButtonText(skyBlue, *m_ui->saveButton3);
    m_ui->saveButton3->setDefault(true);
    setWindowModality(Qt::ApplicationModal);
    fill();
    connect(m_ui->formatPButton3, &QComboBox::activated, this, &ExportWindow::format3Selected);
    connect(m_ui->fileField3, &QLineEdit::textEdited, this, &ExportWindow::nameChanged);
    connect(m_ui->saveButton3, &QPushButton::clicked, this, &ExportWindow::save3Clicked);
    connect(m_ui->cancelButton3, &QPushButton::clicked, this, &ExportWindow::cancel3Clicked);
}

ExportWindow::~ExportWindow() = default;

void ExportWindow::fill() {
    for (const PictureFormatRow& row : pictureFormats) {
        m_ui->formatPButton3->addItem(shown(row.title));
    }
    m_ui->formatPButton3->setCurrentIndex(static_cast<int>(PictureFormat::Png));
    for (const std::string_view title : compressionTitles) {
        m_ui->compressPButton3->addItem(shown(title));
    }
    format3Selected();
}

void ExportWindow::showExportFrame() {
    if (m_open) {
        return;
    }
    m_menus.saveMenuStatus();
    m_stores.reloadOnlyDB1();
    loadSettings3();
    placeBelowTop(*this, m_mainWindow);
    show();
    m_open = true;
}

void ExportWindow::loadSettings3() {
    const auto settings = loadExportSettings(m_file);
    if (settings) {
        m_ui->formatPButton3->setCurrentIndex(settings->format);
        m_ui->compressPButton3->setCurrentIndex(settings->compression);
        format3Selected();
    }
    m_ui->fileField3->setText(shown(settings ? settings->name : fallbackPictureName));
    showValidity();
}

PictureFormat ExportWindow::format() const {
    return static_cast<PictureFormat>(m_ui->formatPButton3->currentIndex());
}

int ExportWindow::compression() const {
    return m_ui->compressPButton3->currentIndex();
}

std::string ExportWindow::name() const {
    return m_ui->fileField3->text().toStdString();
}

bool ExportWindow::nameIsValid() const {
    return validateName4(name(), shortestName);
}

void ExportWindow::format3Selected() {
    m_ui->compressPButton3->setEnabled(row(format()).hasQuality);
}

void ExportWindow::nameChanged() {
    showValidity();
    emit changed();
}

void ExportWindow::showValidity() {
    const bool valid = nameIsValid();
    showAsValid(*m_ui->fileField3, valid);
    QPalette palette = m_ui->label3c->palette();
    palette.setColor(QPalette::WindowText, errorColor(palette));
    m_ui->nameNote3->setPalette(palette);
    m_ui->nameNote3->setVisible(!valid);
    m_ui->cancelButton3->setEnabled(valid);
}

void ExportWindow::save3Clicked() {
    m_ui->saveButton3->setEnabled(false);
    const ExportSettings settings{m_ui->formatPButton3->currentIndex(), compression(), name()};
    if (const auto saved = saveExportSettings(m_file, settings); !saved) {
        log(LogLevel::Warning, "persistence", saved.error().message);
    }
    m_pendingEnable = PendingCall(m_calls, saveRest, [this] { m_ui->saveButton3->setEnabled(true); });
}

void ExportWindow::cancel3Clicked() {
    if (m_open) {
        m_menus.loadMenuStatus();
        hide();
        m_open = false;
        emit changed();
    }
}

void ExportWindow::reject() {
    if (m_ui->cancelButton3->isEnabled()) {
        cancel3Clicked();
    }
}

} // namespace starbloom
