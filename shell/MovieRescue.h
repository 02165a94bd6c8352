// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/Encoders.h"

#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <filesystem>

class QWidget;

namespace starbloom {

/// Looks for a movie that an earlier run could not finish, and offers to make a playable file of what there is.
///
/// The user may also throw it away, or leave it for the next start. The encoders and the window must outlive it; it
/// waits for a rescue under way when it is destroyed. GUI thread.
class MovieRescue final : public QObject {
    Q_OBJECT

public:
    MovieRescue(Encoders& encoders, std::filesystem::path journal, QWidget& window);
    ~MovieRescue() override;

    /// Looks and asks, one movie after the other. Returns at once.
    void offer();

signals:
    void rescued(const RecoveredMovie& movie);
    void failed(const QString& why);

private:
    void ask(const UnfinishedMovie& movie);
    void rescue(const UnfinishedMovie& movie);

    Encoders& m_encoders;
    std::filesystem::path m_journal;
    QWidget& m_window;
    std::atomic<bool> m_ending = false;
    QThreadPool m_worker;
};

} // namespace starbloom
