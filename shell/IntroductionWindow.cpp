// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/IntroductionWindow.h"

#include "persistence/stores/StoreTables.h"
#include "shell/ControlTitles.h"
#include "shell/ModalPlace.h"
#include "shell/introduction/Bundle.h"
#include "shell/introduction/PageBadge.h"
#include "ui_IntroductionWindow.h"
#include "views/SymbolIcon.h"
#include "views/Texts.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QShortcut>
#include <QWindow>

#include <array>

namespace starbloom {

namespace {

/// Of the switches, counted from 0.
constexpr std::size_t introductionSwitch = 1;

constexpr int textHeight = 16;

/// From the main window's top: its toolbar, of which the pages tell, stays in sight.
constexpr int distanceFromTop = 112;

/// The ground behind the pictures and the white text, in every colour scheme.
constexpr QColor ground(27, 30, 37);

/// Some descriptions tell the application's name.
struct Description {
    const char* key;
    bool hasName;
};

constexpr std::array<Description, IntroductionPages::count> descriptions{{
    {"introductionDescript1", true},
    {"introductionDescript2", false},
    {"introductionDescript3", false},
    {"introductionDescript4", false},
    {"introductionDescript5", true},
    {"introductionDescript6", true},
    {"introductionDescript7", false},
    {"introductionDescript8", false},
    {"introductionDescript9", true},
    {"introductionDescript10", false},
    {"introductionDescript11", true},
    {"introductionDescript12", false},
    {"introductionDescript13", false},
}};

QString description(int page) {
    const auto& [key, hasName] = descriptions[static_cast<std::size_t>(page - 1)];
    const QString text = textOf(key);
    return hasName ? text.arg(QGuiApplication::applicationDisplayName()) : text;
}

/// With as many pixels as the screen shows of it: a good scaling once instead of a quick one at each painting.
QImage screenshot(int page, double scale) {
    const QImage image =
        imageNamed(QStringLiteral("Screenshot_%1").arg(page, 3, 10, QLatin1Char('0')), textsLanguage());
    if (image.isNull() || image.devicePixelRatio() == scale) {
        return image;
    }
    QImage fitting =
        image.scaled((image.deviceIndependentSize() * scale).toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    fitting.setDevicePixelRatio(scale);
    return fitting;
}

/// A button that is disabled hands the keyboard to the other one.
void setEnabled(QPushButton& button, bool enabled, QPushButton& other) {
    if (!enabled && button.hasFocus()) {
        other.setFocus();
    }
    button.setEnabled(enabled);
}

} // namespace

IntroductionWindow::IntroductionWindow(Stores& stores, const QWidget& mainWindow)
    : m_stores(stores)
    , m_mainWindow(mainWindow)
    , m_ui(std::make_unique<Ui::introductionWindow>()) {
    setAttribute(Qt::WA_QuitOnClose, false);
    // Its size is fixed: all but the button that would make it larger.
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    m_ui->setupUi(this);
    setControlTitles(*this);
    setLooks();
    connectControls();
    showButtons();
    m_ui->forwardButton7->setFocus();
}

IntroductionWindow::~IntroductionWindow() = default;

void IntroductionWindow::setLooks() {
    QPalette dark = m_ui->page7->palette();
    dark.setColor(QPalette::Window, ground);
    dark.setColor(QPalette::WindowText, Qt::white);
    m_ui->page7->setPalette(dark);
    QFont font(QStringLiteral("Helvetica"));
    font.setPixelSize(textHeight);
    m_ui->introductionTextview7->setFont(font);
    m_ui->noshowButton7->setTitleColor(Qt::black);
    m_ui->backButton7->setIcon(symbolIcon(u"back"));
    m_ui->forwardButton7->setIcon(symbolIcon(u"forward"));
}

void IntroductionWindow::connectControls() {
    connect(m_ui->forwardButton7, &QPushButton::clicked, this, &IntroductionWindow::forward7Clicked);
    connect(m_ui->backButton7, &QPushButton::clicked, this, &IntroductionWindow::back7Clicked);
    connect(m_ui->noshowButton7, &QCheckBox::clicked, this, &IntroductionWindow::dontshowClicked);
    const auto onKeys = [this](std::initializer_list<QKeySequence> keys, auto command) {
        for (const QKeySequence& each : keys) {
            connect(new QShortcut(each, this), &QShortcut::activated, this, command);
        }
    };
    onKeys({Qt::Key_Right, Qt::Key_PageDown}, &IntroductionWindow::forward7Clicked);
    onKeys({Qt::Key_Left, Qt::Key_PageUp}, &IntroductionWindow::back7Clicked);
    onKeys({Qt::Key_Escape}, &QWidget::close); // The menus know the key that closes any window.
}

void IntroductionWindow::prepareFirstPage() {
    m_pages = {};
    showPage();
}

void IntroductionWindow::showIntroduction() {
    if (!m_opened) {
        placeBelowTop(*this, m_mainWindow, distanceFromTop);
    }
    showAnew(*this);
    raise();
    activateWindow();
    m_opened = true;
    emit opened();
}

void IntroductionWindow::quicktourApp() {
    showIntroduction();
    m_stores.reloadDB2();
    m_ui->noshowButton7->setChecked(QString::fromStdString(m_stores.checkboxValue(introductionSwitch)).toInt() != 0);
}

void IntroductionWindow::forward7Clicked() {
    if (m_pages.forward()) {
        showPage();
    }
}

void IntroductionWindow::back7Clicked() {
    if (m_pages.back()) {
        showPage();
    }
}

void IntroductionWindow::dontshowClicked() {
    const bool on = m_ui->noshowButton7->isChecked();
    m_stores.saveData2(on ? "1" : "0", generalDefinition().rows[introductionSwitch].key);
    emit switch2Changed(on);
}

void IntroductionWindow::showPage() {
    m_ui->introductionTextview7->setText(description(m_pages.page()));
    m_ui->countView7->setAccessibleName(
        qtTrId("introductionPageName").arg(m_pages.page()).arg(IntroductionPages::count));
    showPictures();
    showButtons();
}

void IntroductionWindow::showPictures() {
    const double scale = devicePixelRatioF();
    m_ui->introView7->setImage(screenshot(m_pages.page(), scale));
    const QColor color = m_pages.isBadgeRed() ? Qt::red : Qt::black;
    const QImage face = stringImage7(QString::number(m_pages.page()), color, scale);
    m_ui->countView7->setImage(roundCorners7(face, {badgeSide / 2.0, badgeSide / 2.0}));
}

void IntroductionWindow::showButtons() {
    starbloom::setEnabled(*m_ui->backButton7, m_pages.canGoBack(), *m_ui->forwardButton7);
    starbloom::setEnabled(*m_ui->forwardButton7, m_pages.canGoForward(), *m_ui->backButton7);
}

void IntroductionWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // A window has no screen of its own before it is shown, and may go to another one later.
    connect(windowHandle(), &QWindow::screenChanged, this, &IntroductionWindow::showPictures, Qt::UniqueConnection);
    showPictures();
}

void IntroductionWindow::closeEvent(QCloseEvent* event) {
    const bool wasOpen = isVisible();
    QWidget::closeEvent(event);
    if (wasOpen) {
        introductionWillClose();
    }
}

void IntroductionWindow::introductionWillClose() {
    emit closed();
}

} // namespace starbloom
