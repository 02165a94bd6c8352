// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace starbloom {

/// Turns the signals that ask a program to end (SIGTERM, SIGINT, SIGHUP) into an event of the event loop, so that it
/// ends as if its window had been closed. At most one lives at a time. GUI thread.
class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

signals:
    void received();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace starbloom
