// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ExportWindow.h"

#include "base/Log.h"
#include "export/picture/FileNames.h"
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
    , m_mainWindow(mainWindow) {
    setObjectName(QStringLiteral("exportWindow"));
    setWindowModality(Qt::ApplicationModal);
}

ExportWindow::~ExportWindow() = default;

void ExportWindow::makeControls() {
    m_ui = std::make_unique<Ui::ExportWindow>();
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
    fill();
    connect(m_ui->formatPButton3, &QComboBox::activated, this, &ExportWindow::format3Selected);
    connect(m_ui->compressPButton3, &QComboBox::activated, this, [this](int index) { m_chosen.compression = index; });
    connect(m_ui->fileField3, &QLineEdit::textEdited, this, &ExportWindow::nameChanged);
    connect(m_ui->saveButton3, &QPushButton::clicked, this, &ExportWindow::save3Clicked);
    connect(m_ui->cancelButton3, &QPushButton::clicked, this, &ExportWindow::cancel3Clicked);
}

void ExportWindow::fill() {
    for (const PictureFormatRow& row : pictureFormats) {
        m_ui->formatPButton3->addItem(shown(row.title));
    }
    for (const std::string_view title : compressionTitles) {
        m_ui->compressPButton3->addItem(shown(title));
    }
}

void ExportWindow::showExportFrame() {
    if (m_open) {
        return;
    }
    if (m_ui == nullptr) {
        makeControls();
    }
    m_menus.saveMenuStatus();
    m_stores.reloadOnlyDB1();
    loadSettings3();
    placeBelowTop(*this, m_mainWindow);
    showAnew(*this);
    m_open = true;
}

void ExportWindow::loadSettings3() {
    if (const auto settings = loadExportSettings(m_file)) {
        m_chosen = *settings;
    } else {
        m_chosen.name = fallbackPictureName;
    }
    if (m_ui != nullptr) {
        showChosen();
    }
}

void ExportWindow::showChosen() {
    m_ui->formatPButton3->setCurrentIndex(m_chosen.format);
    m_ui->compressPButton3->setCurrentIndex(m_chosen.compression);
    m_ui->compressPButton3->setEnabled(row(format()).hasQuality);
    m_ui->fileField3->setText(shown(m_chosen.name));
    showValidity();
}

bool ExportWindow::nameIsValid() const {
    return validateName4(name(), shortestName);
}

void ExportWindow::format3Selected() {
    m_chosen.format = m_ui->formatPButton3->currentIndex();
    m_ui->compressPButton3->setEnabled(row(format()).hasQuality);
}

void ExportWindow::nameChanged() {
    m_chosen.name = m_ui->fileField3->text().toStdString();
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
    if (const auto saved = saveExportSettings(m_file, m_chosen); !saved) {
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
