// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/OpenFile.h"

#include "persistence/stores/AppFolder.h"

#include <QPointer>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace starbloom {

namespace {

/// Where the preferences' folder for opening lies in their mirror.
constexpr std::size_t openFolder = 0;

/// In the order in which the panel offers them.
constexpr std::array<std::string_view, 10> pictureTypes{"bmp", "jpg", "jpeg", "gif", "jp2",
                                                        "pdf", "png", "psd",  "tif", "tiff"};

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return text;
}

} // namespace

OpenFile::OpenFile(FilePanel& panel, MenuSnapshot& menus, const Stores& stores, const DocumentsFolder& documents,
                   QString sizeProgram)
    : m_panel(panel)
    , m_menus(menus)
    , m_stores(stores)
    , m_documents(documents)
    , m_sizes(std::move(sizeProgram)) {}

void OpenFile::openFile1() {
    m_menus.saveMenuStatus();
    m_panel.ask({.kind = FilePanelRequest::Kind::File,
                 .message = qtTrId("openFileMessage").toStdString(),
                 .title = qtTrId("openFileTitle").toStdString(),
                 .startFolder = startFolder(),
                 .types = {pictureTypes.begin(), pictureTypes.end()},
                 .typesName = qtTrId("openFileTypes").toStdString()},
                [self = QPointer(this)](const std::optional<std::filesystem::path>& choice) {
                    if (self) {
                        self->answered(choice);
                    }
                });
}

bool OpenFile::openImage2(const std::filesystem::path& path, bool restoreMenus) {
    const bool accepted =
        std::find(pictureTypes.begin(), pictureTypes.end(), lowerCase(getExtension(path))) != pictureTypes.end();
    if (restoreMenus) {
        m_menus.loadMenuStatus();
    }
    return accepted;
}

void OpenFile::getImageSize(const std::filesystem::path& path, std::function<void(const QSize& size)> answer) {
    m_sizes.read(path, std::move(answer));
}

std::string OpenFile::getExtension(const std::filesystem::path& path) {
    const auto last = path.has_filename() ? path.filename() : path.parent_path().filename();
    const std::string extension = last.extension().string();
    return extension.empty() ? extension : extension.substr(1);
}

std::filesystem::path OpenFile::startFolder() const {
    const std::filesystem::path kept = m_stores.preferenceValue(openFolder);
    return fileExists(kept) ? kept : m_documents.documentsFolder();
}

void OpenFile::answered(const std::optional<std::filesystem::path>& choice) {
    if (!choice) {
        m_menus.loadMenuStatus();
        return;
    }
    // A command that was begun meanwhile would record the menus as it finds them, all disabled, and give them back like
    // that.
    m_pause = std::make_unique<InputPause>();
    m_sizes.readAtOnce(*choice, [this, path = *choice](const QSize& size) { measured(path, size); });
}

void OpenFile::measured(const std::filesystem::path& path, const QSize& size) {
    m_pause.reset();
    if (isLargeEnough(size)) {
        openImage2(path, true);
    } else {
        m_menus.loadMenuStatus();
    }
}

} // namespace starbloom
