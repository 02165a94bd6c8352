// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/AppDelegate.h"
#include "shell/LoadedEncoders.h"
#include "shell/QtDelayedCalls.h"

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTabWidget>

#include <span>
#include <stdexcept>
#include <string>

namespace starbloom {

/// Lets the application work until the condition holds. Throws after ten seconds in vain.
template <typename Condition>
void waitFor(const char* what, Condition condition) {
    const QDeadlineTimer deadline(std::chrono::seconds(10));
    while (!condition()) {
        if (deadline.hasExpired()) {
            throw std::runtime_error(std::string("waited in vain for ") + what);
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    QCoreApplication::processEvents();
}

/// As a user types it.
void replaceText(QLineEdit& field, const char* text);

/// The answers of a desktop whose user always chooses the same folder.
class Desktop final : public FilePanel, public DocumentsFolder, public FileManager {
public:
    explicit Desktop(std::filesystem::path folder)
        : m_folder(std::move(folder)) {}

    void ask(const FilePanelRequest& request,
             std::function<void(std::optional<std::filesystem::path> choice)> answer) override;
    std::filesystem::path documentsFolder() const override;

    void showInFolder(const std::filesystem::path& /*file*/) override {}

    void open(const QUrl& /*url*/) override {}

private:
    std::filesystem::path m_folder;
};

/// Has no printer, so that the alert shows.
class NoPrinting final : public PrintSystem {
public:
    bool printPlain(QWidget& /*parent*/, Finished /*finished*/) override { return false; }

    bool setUpPage(QWidget& /*parent*/, Finished /*finished*/) override { return false; }
};

/// Where sliders are put.
struct SliderPosition {
    Parameter parameter;
    float position;
};

/// The whole application without a screen, with a show that stands still at a moment: the same picture each time. Its
/// files are in a folder of its own, below `home`.
class DrivenApplication {
public:
    explicit DrivenApplication(const std::filesystem::path& home);

    /// Launches it with the show of the documents' pictures, and chooses a folder for exports.
    void launch();

    /// Starts the show anew with the sliders there, and waits until it stands at the moment.
    void showMoment(std::span<const SliderPosition> positions, std::chrono::milliseconds moment);

    AppDelegate& app() { return m_app; }

    /// In the main window and the windows that belong to it. Throws if there is none.
    template <typename Widget>
    Widget& find(const char* name) {
        auto* found = m_app.window().findChild<Widget*>(QString::fromUtf8(name));
        if (found == nullptr) {
            throw std::runtime_error(std::string("no such widget: ") + name);
        }
        return *found;
    }

private:
    std::chrono::nanoseconds m_now = std::chrono::hours(1);
    QtDelayedCalls m_calls;
    Desktop m_desktop;
    LoadedEncoders m_encoders;
    NoPrinting m_printing;
    AppDelegate m_app;
};

} // namespace starbloom
