// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/FileManager.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>

namespace starbloom {

namespace {

void openFolderOf(const std::filesystem::path& file) {
    QDesktopServices::openUrl(urlOf(file.parent_path()));
}

} // namespace

QUrl urlOf(const std::filesystem::path& file) {
    // By its bytes: a name need not be text.
    const QByteArray encoded = QByteArray::fromStdString(file.string()).toPercentEncoding("/");
    return QUrl::fromEncoded("file://" + encoded, QUrl::StrictMode);
}

void DesktopFileManager::showInFolder(const std::filesystem::path& file) {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolderOf(file);
        return;
    }
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{urlOf(file).toString(QUrl::FullyEncoded)} << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), qGuiApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, qGuiApp, [file, watcher] {
        if (const QDBusPendingReply<> reply = *watcher; reply.isError()) {
            openFolderOf(file);
        }
        watcher->deleteLater();
    });
}

void DesktopFileManager::open(const QUrl& url) {
    QDesktopServices::openUrl(url);
}

} // namespace starbloom
