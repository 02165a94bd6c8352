// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/DropView.h"

#include "views/ControlLook.h"
#include "views/SymbolIcon.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QSysInfo>
#include <QUrl>

#include <algorithm>
#include <unistd.h>

namespace starbloom {

namespace {

bool isOfThisMachine(const QString& host) {
    return host.isEmpty() || host == QStringLiteral("localhost") ||
           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

/// The one kind of folder that desktops here start with a click, like a file: an application's, with its program in it.
bool isFilePackage(const std::filesystem::path& folder) {
    const auto program = folder / "AppRun";
    std::error_code error;
    return std::filesystem::is_regular_file(program, error) && ::access(program.c_str(), X_OK) == 0;
}

/// Whether the drag has files, rather than addresses of pages alone.
bool hasFiles(const QMimeData& pasteboard) {
    const QList<QUrl> urls = pasteboard.urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

void answerCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.accept();
}

} // namespace

DropView::DropView(QWidget* parent)
    : QWidget(parent)
    , m_myImage(symbolIcon(u"dropboxImage")) {
    setAcceptDrops(true);
    setAccessibleName(qtTrId("dropViewName"));
    setToolTip(qtTrId("dropViewToolTip"));
}

bool DropView::performDragOperation(const QMimeData& pasteboard) {
    if (m_receiver == nullptr) {
        return true;
    }
    for (const QUrl& url : pasteboard.urls()) {
        auto path = convertPath(url);
        if (path.empty() || isPathDirectory(path, false)) {
            continue;
        }
        const auto dropped = m_dropped.emplace_back(std::make_shared<Dropped>(std::move(path)));
        m_receiver->getImageSize(dropped->path, [self = QPointer(this), dropped](const QSize& size) {
            dropped->size = size;
            if (self) {
                self->openMeasured();
            }
        });
    }
    return true;
}

void DropView::openMeasured() {
    while (!m_dropped.empty() && m_dropped.front()->size) {
        const auto dropped = m_dropped.front();
        m_dropped.pop_front();
        if (m_receiver != nullptr && isLargeEnough(*dropped->size)) {
            m_receiver->openImage2(dropped->path, false);
        }
    }
}

std::filesystem::path DropView::convertPath(const QUrl& url) {
    if (!url.isLocalFile() || !isOfThisMachine(url.host())) {
        return {};
    }
    // By its bytes: a name need not be text.
    const QByteArray path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    return path.contains('\0') ? std::filesystem::path() : std::filesystem::path(path.toStdString());
}

bool DropView::isPathDirectory(const std::filesystem::path& path, bool packagesAsFolders) {
    std::error_code error;
    return std::filesystem::is_directory(path, error) && (packagesAsFolders || !isFilePackage(path));
}

void DropView::paintEvent(QPaintEvent* /*event*/) {
    // The symbol keeps its proportions, so it is drawn as a square first, and that is stretched.
    const int side = std::max(width(), height());
    const QPixmap picture =
        m_myImage.pixmap(QSize(side, side), devicePixelRatioF(), isEnabled() ? QIcon::Normal : QIcon::Disabled);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(onPixels(painter, rect()), picture, picture.rect());
}

void DropView::dragEnterEvent(QDragEnterEvent* event) {
    if (hasFiles(*event->mimeData())) {
        answerCopy(*event); // Even while drops are refused.
    }
}

void DropView::dragMoveEvent(QDragMoveEvent* event) {
    answerCopy(*event);
}

void DropView::dropEvent(QDropEvent* event) {
    if (prepareForDragOperation() && performDragOperation(*event->mimeData())) {
        answerCopy(*event);
    } else {
        event->setDropAction(Qt::IgnoreAction);
        event->ignore();
    }
}

} // namespace starbloom
