// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "persistence/stores/Stores.h"
#include "shell/introduction/IntroductionPages.h"

#include <QWidget>

#include <memory>

namespace Ui {
class introductionWindow;
}

namespace starbloom {

/// The introduction: thirteen pages, each with a picture, a description and a badge with its number, and a check box
/// that keeps the window away from the next starts.
///
///     IntroductionWindow introduction(stores, mainWindow);
///     introduction.prepareFirstPage();
///     introduction.showIntroduction(); // At a start; quicktourApp() from the menu.
///
/// A window of its own that stays open beside the others, but does not keep the application running. Hidden or shown,
/// never rebuilt: it comes back with the page that was shown last. Making it loads its font and draws a picture, so it
/// is made when it is to be shown. The stores and the main window must outlive it. A store that fails when the check
/// box is clicked throws StoreFailure out of the event loop. Lives on the GUI thread.
class IntroductionWindow final : public QWidget {
    Q_OBJECT

public:
    IntroductionWindow(Stores& stores, const QWidget& mainWindow);
    ~IntroductionWindow() override;

    /// Shows the first page as it is before anybody has turned one.
    void prepareFirstPage();

    /// Shows the window, in front, with the page that was shown last.
    void showIntroduction();

    /// The same from the menu; the check box follows the store.
    void quicktourApp();

    int introductionPage() const { return m_pages.page(); }

    /// Whether it has been shown in this run, be it closed by now or not.
    bool introductionWindowOpen() const { return m_opened; }

    // The controls' commands.
    void forward7Clicked();
    void back7Clicked();
    void dontshowClicked();

signals:
    void opened();
    void closed();
    /// The check box, and with it switch 2 of the preferences, was clicked and is stored.
    void switch2Changed(bool on);

protected:
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void connectControls();
    void setLooks();
    void showPage();
    void showPictures();
    void showButtons();
    void introductionWillClose();

    Stores& m_stores;
    const QWidget& m_mainWindow;
    std::unique_ptr<Ui::introductionWindow> m_ui;
    IntroductionPages m_pages;
    bool m_opened = false;
};

} // namespace starbloom
