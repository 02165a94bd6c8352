// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Companions.h"

#include "shell/GuideWindow.h"
#include "shell/IntroductionWindow.h"
#include "shell/MainWindow.h"
#include "shell/Menus.h"
#include "shell/SettingsSidebar.h"
#include "shell/Spark.h"

#include <QAction>

#include <utility>

namespace starbloom {

Companions::Companions(Owners owners, const Surroundings& surroundings)
    : m_owners(owners)
    , m_surroundings(surroundings) {
    const Menus& menus = m_owners.window.menus();
    QObject::connect(&menus.action(Command::AppQuicktour), &QAction::triggered, &m_owners.window,
                     [this] { quicktourApp(); });
    QObject::connect(&menus.action(Command::EmitterShow), &QAction::triggered, &m_owners.window,
                     [this] { showEmitterGuide(); });
}

Companions::~Companions() = default;

void Companions::beginWithIntroduction(bool wanted) {
    m_introductionIsDue = wanted;
    setTourEnabled(!wanted);
}

void Companions::mainWindowAppeared() {
    if (std::exchange(m_introductionIsDue, false)) {
        introduction().showIntroduction();
    }
}

IntroductionWindow& Companions::introduction() {
    if (m_introduction == nullptr) {
        m_introduction = std::make_unique<IntroductionWindow>(m_owners.stores, m_owners.window);
        m_introduction->prepareFirstPage();
        QObject::connect(m_introduction.get(), &IntroductionWindow::opened, &m_owners.window,
                         [this] { setTourEnabled(false); });
        QObject::connect(m_introduction.get(), &IntroductionWindow::closed, &m_owners.window,
                         [this] { setTourEnabled(true); });
    }
    return *m_introduction;
}

void Companions::setTourEnabled(bool enabled) {
    // The introduction can be closed while a sheet of the main window has the menus rest.
    m_owners.menus.setEnabled(MenuItem::AppQuicktour, enabled);
}

void Companions::quicktourApp() {
    introduction().quicktourApp();
}

void Companions::showEmitterGuide() {
    if (m_guide == nullptr) {
        m_guide = std::make_unique<GuideWindow>(spark(), m_owners.window, m_owners.stores, m_owners.frames,
                                                m_surroundings.calls);
        QAction& show = m_owners.window.menus().action(Command::EmitterShow);
        QObject::connect(m_guide.get(), &GuideWindow::opened, &show, [&show] { show.setEnabled(false); });
        QObject::connect(m_guide.get(), &GuideWindow::closed, &show, [&show] { show.setEnabled(true); });
        QObject::connect(m_guide.get(), &GuideWindow::sliderChosen, &m_owners.sidebar, &SettingsSidebar::showSlider);
    }
    m_guide->showEmitterGuide();
}

void Companions::close() {
    m_introductionIsDue = false;
    if (m_introduction != nullptr && m_introduction->introductionWindowOpen()) {
        m_introduction->close();
    }
    m_owners.sidebar.close();
    if (m_guide != nullptr) {
        m_guide->close();
    }
}

} // namespace starbloom
