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
    const int wish = ++m_current;
    auto call =
        QDBusMessage::createMethodCall(portal, QStringLiteral("/org/freedesktop/portal/desktop"),
                                       QStringLiteral("org.freedesktop.portal.Inhibit"), QStringLiteral("Inhibit"));
    call << QString() << (logout | suspend | idle) << QVariantMap{{QStringLiteral("reason"), reason}};
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, reason, wish] {
        const QDBusPendingReply<QDBusObjectPath> reply = *answer;
        answer->deleteLater();
        const bool stillWanted = m_wanted && wish == m_current;
        if (reply.isError()) {
            if (stillWanted) {
                askLogin(reason);
            }
        } else if (stillWanted) {
            m_request = reply.value();
        } else {
            close(reply.value());
        }
    });
}

void SessionInhibitor::close(const QDBusObjectPath& request) {
    QDBusConnection::sessionBus().asyncCall(QDBusMessage::createMethodCall(
        portal, request.path(), QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Close")));
}

void SessionInhibitor::askLogin(const QString& reason) {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep:shutdown:idle") << QCoreApplication::applicationName() << reason
         << QStringLiteral("block");
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, wish = m_current] {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *answer;
        answer->deleteLater();
        if (!reply.isError() && m_wanted && wish == m_current) {
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
        close(m_request);
        m_request = QDBusObjectPath();
    }
}

} // namespace starbloom
