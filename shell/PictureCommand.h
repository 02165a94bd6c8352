// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/Encoders.h"
#include "persistence/files/FilePanel.h"

#include <QObject>
#include <QThreadPool>

#include <memory>

class QWidget;

namespace starbloom {

/// Exports pictures: takes a picture that is ready, has it encoded and written by a worker, and tells how it went.
///
/// A picture that cannot be written is not lost: the user may have it written to another folder, as often as it takes.
/// Pictures are written one after the other, in the order in which they were taken. Destroying this waits for those
/// that are under way. The encoders, the panel and the window must outlive it. GUI thread.
class PictureCommand final : public QObject {
    Q_OBJECT

public:
    PictureCommand(Encoders& encoders, QWidget& window, FilePanel& panel);
    ~PictureCommand() override;

    void savePicture(PictureRequest request);

signals:
    void saved(const std::filesystem::path& file);

    /// The user leaves it at that.
    void failed(const QString& why);

private:
    using Shared = std::shared_ptr<PictureRequest>;

    void finished(const Shared& request, const Result<std::filesystem::path>& result);
    void offerAnotherFolder(const Shared& request, const QString& why);
    void askForFolder(const Shared& request, const QString& why);

    Encoders& m_encoders;
    QWidget& m_window;
    FilePanel& m_panel;
    QThreadPool m_worker;
};

} // namespace starbloom
