// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/screenshots/DrivenApplication.h"

#include "shell/SliderPanel.h"
#include "views/PathControl.h"

#include <cmath>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

constexpr std::uint64_t showSeed = 7;

/// When many bursts are open at once, with the positions below. Changes with them and with the seed.
constexpr std::chrono::milliseconds fineMoment{5500};

constexpr SliderPosition finePositions[] = {
    {Parameter::RocketBirth, 22.0F},
    {Parameter::RocketVelocity, 430.0F},
    {Parameter::RocketAngle, 1.6F},
};

/// Shown instead of the temporary folder, whose name is another one each time.
const auto documents = QStringLiteral("/home/robin/Documents");
const auto pictures = QStringLiteral("/home/robin/Pictures/Fireworks");

} // namespace

void replaceText(QLineEdit& field, const char* text) {
    field.setFocus();
    field.selectAll();
    field.insert(QString::fromUtf8(text));
}

void Desktop::ask(const FilePanelRequest& /*request*/,
                  std::function<void(std::optional<std::filesystem::path> choice)> answer) {
    answer(m_folder);
}

std::filesystem::path Desktop::documentsFolder() const {
    return documents.toStdString();
}

DrivenApplication::DrivenApplication(const std::filesystem::path& home)
    : m_desktop(home / "pictures")
    , m_app(AppFolder(home / "data"),
            {m_calls, m_desktop, m_desktop, m_desktop, m_encoders, m_printing, showSeed, [this] { return m_now; }}) {
    std::filesystem::create_directories(home / "data");
    std::filesystem::create_directories(home / "pictures");
}

void DrivenApplication::launch() {
    m_app.launch();
    auto& stage = find<StageView>("stage");
    waitFor("the stage", [&] { return stage.renderedFrames() > 0; });
    showMoment(finePositions, fineMoment);
    find<PathControl>("pathControlT1").click();
    find<PathControl>("pathControlT1").setStringValue(pictures);
}

void DrivenApplication::showMoment(std::span<const SliderPosition> positions, std::chrono::milliseconds moment) {
    auto& stage = find<StageView>("stage");
    auto& panel = *m_app.sidebar().findChild<SliderPanel*>();
    for (const auto& [parameter, position] : positions) {
        panel.setPosition(parameter, position);
        emit panel.moved();
    }
    const auto before = stage.renderedFrames();
    stage.restart();
    m_now += moment;
    const std::chrono::duration<double> wanted = moment;
    waitFor("the moment",
            [&] { return stage.renderedFrames() > before && std::abs(stage.shownTime() - wanted.count()) < 0.01; });
}

} // namespace starbloom
