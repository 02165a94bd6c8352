// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/AppDelegate.h"
#include "shell/LoadedEncoders.h"
#include "tests/support/HandDrivenCalls.h"
#include "tests/support/TemporaryFolder.h"

#include <optional>
#include <string>
#include <utility>

namespace starbloom {

/// Answers at once, with what the test has prepared, and keeps the question.
class PreparedPanel final : public FilePanel {
public:
    void ask(const FilePanelRequest& request,
             std::function<void(std::optional<std::filesystem::path> choice)> reply) override {
        asked = request;
        reply(answer);
    }

    std::optional<std::filesystem::path> answer;
    FilePanelRequest asked;
};

/// Shows no panel: what it was asked for is over when the test says so. Or it has no printer.
class PreparedPrintSystem final : public PrintSystem {
public:
    bool printPlain(QWidget&, Finished done) override { return begin("page", std::move(done)); }

    bool setUpPage(QWidget&, Finished done) override { return begin("setup", std::move(done)); }

    bool available = true;
    std::string asked;
    Finished finished;

private:
    bool begin(const char* what, Finished done) {
        asked = what;
        finished = std::move(done);
        return available;
    }
};

/// Keeps the introduction, which would take the keyboard, away from the next launch in this home.
inline void skipIntroduction(const TemporaryFolder& home) {
    const AppFolder folder(home.path());
    folder.createAppFolder();
    Stores stores(folder);
    stores.openCreateDB2();
    stores.saveData2("1", "Value02");
}

/// What a whole application needs in a test: a clock moved by hand, prepared answers, a folder for everything.
class PreparedSurroundings final : public DocumentsFolder, public FileManager {
public:
    explicit PreparedSurroundings(const TemporaryFolder& home)
        : m_documents(home.path()) {}

    Surroundings with(StageView::ClockSource clock = StageView::steadyClock) {
        return {calls, panel, *this, *this, encoders, printSystem, 20, std::move(clock)};
    }

    std::filesystem::path documentsFolder() const override { return m_documents; }

    void showInFolder(const std::filesystem::path& file) override { shown = file; }

    void open(const QUrl& url) override { opened = url; }

    HandDrivenCalls calls;
    PreparedPanel panel;
    LoadedEncoders encoders;
    PreparedPrintSystem printSystem;
    std::filesystem::path shown; ///< What the user was last shown, and
    QUrl opened;                 ///< what was opened.

private:
    std::filesystem::path m_documents;
};

} // namespace starbloom
