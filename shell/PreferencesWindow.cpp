// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/PreferencesWindow.h"

#include "persistence/stores/StoreTables.h"
#include "shell/ControlTitles.h"
#include "shell/FolderField.h"
#include "shell/ModalPlace.h"
#include "ui_PreferencesWindow.h"

#include <QEvent>
#include <QStyleOptionButton>

#include <algorithm>
#include <string>

namespace starbloom {

namespace {

constexpr std::size_t openFolderPosition = 0;
constexpr std::size_t destinationFolderPosition = 1;

QString percentage(int value) {
    return QString::number(value) + u'%';
}

void setWidthOfWidest(std::initializer_list<QWidget*> column) {
    int widest = 0;
    for (const QWidget* each : column) {
        widest = std::max(widest, each->sizeHint().width());
    }
    for (QWidget* each : column) {
        each->setMinimumWidth(widest);
    }
}

} // namespace

PreferencesWindow::PreferencesWindow(Stores& stores, const DocumentsFolder& documents, MenuSnapshot& menus,
                                     FilePanel& panel, QWidget& mainWindow)
    : QDialog(&mainWindow)
    , m_stores(stores)
    , m_documents(documents)
    , m_menus(menus)
    , m_mainWindow(mainWindow)
    , m_ui(std::make_unique<Ui::preferencesWindow>()) {
    m_ui->setupUi(this);
    m_switches = {m_ui->generalCheckbox01p, m_ui->generalCheckbox02p, m_ui->generalCheckbox03p,
                  m_ui->generalCheckbox04p, m_ui->generalCheckbox05p, m_ui->generalCheckbox06p,
                  m_ui->generalCheckbox07p, m_ui->generalCheckbox08p, m_ui->generalCheckbox09p,
                  m_ui->generalCheckbox10p, m_ui->generalCheckbox11p, m_ui->generalCheckbox12p};
    // The box knows on which side the desktop has which button.
    m_ui->buttonBox->addButton(m_ui->saveButton1p, QDialogButtonBox::AcceptRole);
    m_ui->buttonBox->addButton(m_ui->closeButton1p, QDialogButtonBox::RejectRole);
    m_openFolder =
        std::make_unique<FolderField>(*m_ui->openField1p, *m_ui->systempopup1p, m_documents, panel,
                                      FolderField::PanelTexts{"preferencesPanelTitle", "preferencesOpenPanelMessage"});
    m_destinationFolder = std::make_unique<FolderField>(
        *m_ui->destField2p, *m_ui->systempopup2p, m_documents, panel,
        FolderField::PanelTexts{"preferencesPanelTitle", "preferencesExportPanelMessage"});
    setControlTitles(*this);
    fillExporting();
    connectControls();
    setWindowModality(Qt::ApplicationModal);
    m_ui->tabView1p->setCurrentIndex(0);
    fitColumns();
}

PreferencesWindow::~PreferencesWindow() = default;

void PreferencesWindow::fillExporting() {
    m_ui->exportPopup1p->addItems({QStringLiteral("PNG"), QStringLiteral("JPEG"), QStringLiteral("TIFF")});
    compress2pChanged(m_ui->compressSlider2p->value());
}

void PreferencesWindow::connectControls() {
    connect(m_ui->systempopup1p, &QComboBox::activated, this, &PreferencesWindow::systempop1pSelected);
    connect(m_ui->systempopup2p, &QComboBox::activated, this, &PreferencesWindow::systempop2pSelected);
    connect(m_ui->defaultButton1p, &QPushButton::clicked, this, &PreferencesWindow::default1pClicked);
    connect(m_ui->defaultButton2p, &QPushButton::clicked, this, &PreferencesWindow::default2pClicked);
    connect(m_ui->compressSlider2p, &QSlider::valueChanged, this, &PreferencesWindow::compress2pChanged);
    connect(m_ui->closeButton1p, &QPushButton::clicked, this, &PreferencesWindow::close1pClicked);
    connect(m_ui->saveButton1p, &QPushButton::clicked, this, &PreferencesWindow::save1pClicked);
}

void PreferencesWindow::openPreferences() {
    if (m_open) {
        return;
    }
    m_stores.clearPreferences();
    m_menus.saveMenuStatus();
    showFolders(m_stores.populateDB1(m_documents));
    m_stores.populateDB2();
    showSwitches();
    place();
    showAnew(*this);
    m_open = true;
}

void PreferencesWindow::showFolders(const PreferenceFolders& folders) {
    m_openFolder->showStored(folders.open);
    m_destinationFolder->showStored(folders.destination);
}

void PreferencesWindow::showSwitches() {
    for (std::size_t i = 0; i < m_switches.size(); ++i) {
        m_switches[i]->setChecked(m_stores.checkboxValue(i) == "1");
    }
}

bool PreferencesWindow::isSwitchOn(int number) const {
    return m_switches.at(static_cast<std::size_t>(number) - 1)->isChecked();
}

void PreferencesWindow::place() {
    ensurePolished();
    fitColumns();
    placeBelowTop(*this, m_mainWindow);
}

void PreferencesWindow::fitColumns() {
    // The boxes of the second page have a grid each; equal widths make one of the three.
    setWidthOfWidest({m_ui->boxLabel1p, m_ui->boxLabel2p, m_ui->exportingLabel1p, m_ui->exportingLabel2p});
    setWidthOfWidest({m_ui->defaultButton1p, m_ui->defaultButton2p, m_ui->compressLabel2p});
    // The note begins below the text of its switch.
    QStyleOptionButton option;
    option.initFrom(m_ui->generalCheckbox04p);
    const QRect text = style()->subElementRect(QStyle::SE_CheckBoxContents, &option, m_ui->generalCheckbox04p);
    const int indent = isRightToLeft() ? m_ui->generalCheckbox04p->width() - text.right() - 1 : text.left();
    m_ui->workNoteLayout->setContentsMargins(indent, 0, 0, 0);
}

void PreferencesWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        fitColumns();
    }
}

void PreferencesWindow::systempop1pSelected() {
    m_openFolder->popupSelected();
}

void PreferencesWindow::systempop2pSelected() {
    m_destinationFolder->popupSelected();
}

void PreferencesWindow::default1pClicked() {
    m_openFolder->useDocuments();
}

void PreferencesWindow::default2pClicked() {
    m_destinationFolder->useDocuments();
}

void PreferencesWindow::compress2pChanged(int value) {
    m_ui->compressLabel2p->setText(percentage(value));
}

void PreferencesWindow::close1pClicked() {
    if (m_open) {
        m_menus.loadMenuStatus();
        leave();
    }
}

void PreferencesWindow::save1pClicked() {
    if (!m_open) {
        return;
    }
    const auto& preferences = preferencesDefinition().rows;
    m_stores.saveData1(m_openFolder->folder().string(), preferences[openFolderPosition].key);
    m_stores.saveData1(m_destinationFolder->folder().string(), preferences[destinationFolderPosition].key);
    for (std::size_t i = 0; i < m_switches.size(); ++i) {
        const std::string state = m_switches[i]->isChecked() ? "1" : "0";
        m_stores.saveData2(state, generalDefinition().rows[i].key);
        m_stores.editData2(i, state); // Some switches are read during the run.
    }
    m_menus.loadMenuStatus();
    m_stores.reloadOnlyDB1();
    leave();
}

void PreferencesWindow::leave() {
    hide();
    m_open = false;
    emit closed();
}

void PreferencesWindow::reject() {
    close1pClicked();
}

} // namespace starbloom
