// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QString>

class QDBusMessage;

namespace starbloom {

/// Asks the desktop not to suspend, not to log out and not to dim the screen for a while.
///
/// By the portal org.freedesktop.portal.Inhibit of the session bus; where there is none, by the system's
/// org.freedesktop.login1, which keeps the machine awake; where there is neither, not at all. Nothing waits for the
/// answers. GUI thread.
class SessionInhibitor final : public QObject {
    Q_OBJECT

public:
    SessionInhibitor();
    ~SessionInhibitor() override;

    /// The reason may be shown to the user. Ignored while inhibited.
    void inhibit(const QString& reason);
    void release();

private:
    void askLogin(const QString& reason);
    static void close(const QDBusObjectPath& request);

    bool m_wanted = false;
    int m_current = 0;              ///< Which of all wishes is the present one; answers to others come too late.
    QDBusObjectPath m_request;      ///< The portal's, to be closed.
    QDBusUnixFileDescriptor m_lock; ///< The system's, held as long as it is open.
};

} // namespace starbloom
