// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SessionInhibitor.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace starbloom {

namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");

/// What the portal is asked to hold back: log-out, suspend and idle.
constexpr uint logout = 1;
constexpr uint suspend = 4;
constexpr uint idle = 8;

} // namespace

SessionInhibitor::SessionInhibitor() = default;

SessionInhibitor::~SessionInhibitor() {
    release();
}

void SessionInhibitor::inhibit(const QString& reason) {
    if (m_wanted) {
        return;
    }
    m_wanted = true;
    auto call =
        QDBusMessage::createMethodCall(portal, QStringLiteral("/org/freedesktop/portal/desktop"),
                                       QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    call << QString() << (logout | suspend | idle) << QVariantMap{{QStringLiteral("reason"), reason}};
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, reason] {
        const QDBusPendingReply<QDBusObjectPath> reply = *answer;
        answer->deleteLater();
        if (reply.isError()) {
            askLogin(reason);
            return;
        }
        m_request = reply.value();
        if (!m_wanted) {
            m_wanted = true; // It came too late to be wanted, but has to be closed.
            release();
        }
    });
}

void SessionInhibitor::askLogin(const QString& reason) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep:shutdown:idle") << QCoreApplication::applicationName() << reason
         << QStringLiteral("block");
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *answer;
        answer->deleteLater();
        if (!reply.isError() && m_wanted) {
            m_lock = reply.value();
        }
    });
}

void SessionInhibitor::release() {
    if (!m_wanted) {
        return;
    }
    m_wanted = false;
    m_lock = QDBusUnixFileDescriptor();
    if (!m_request.path().isEmpty()) {
        QDBusConnection::sessionBus().asyncCall(QDBusMessage::createMethodCall(
            portal, m_request.path(), QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Close")));
        m_request = QDBusObjectPath();
    }
}

} // namespace starbloom
