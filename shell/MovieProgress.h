// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/movie/MovieRecorder.h"

#include <QDialog>

#include <memory>

namespace Ui {
class MovieProgress;
}

namespace starbloom {

/// The sheet over the main window while a movie is recorded and written: how far it is, how long it still takes, and a
/// button to give it up. Escape is no answer here; a movie is worth more than a slip. GUI thread.
class MovieProgress final : public QDialog {
    Q_OBJECT

public:
    explicit MovieProgress(QWidget& mainWindow);
    ~MovieProgress() override;

    /// Opens at 0 %.
    void openSheet();
    void closeSheet();

    /// The user has given up, and it takes a moment: the button rests.
    void showAborting();

    void showProgress(const RecordingProgress& progress);

    void reject() override {}

signals:
    void abortClicked();

private:
    QWidget& m_mainWindow;
    std::unique_ptr<Ui::MovieProgress> m_ui;
};

} // namespace starbloom
