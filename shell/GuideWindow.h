// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/SparkImage.h"
#include "engine/panel/ParameterTable.h"
#include "shell/CompanionWindow.h"
#include "shell/guide/GuidePictures.h"

#include <memory>

class QScrollArea;

namespace starbloom {

/// The emitter guide: what each of the fourteen sliders does, with pictures of a show at both ends of each.
///
/// Nothing is drawn before it is shown. The pictures come after the window, from another thread, and anew when the
/// window gets to a screen of another scale. Its place is kept within one run only: what is written is not read back.
class GuideWindow final : public CompanionWindow {
    Q_OBJECT

public:
    /// The image is what sparks are drawn with; without one, the pictures stay black.
    GuideWindow(std::shared_ptr<const SparkImage> image, QWidget& mainWindow, Stores& stores, WindowFrameMemory& memory,
                DelayedCalls& calls);

    /// Shows the window where it was, or else at its place by the main window. Does nothing while it is open.
    void showEmitterGuide() { open(); }

    /// Whether pictures are on their way.
    bool isDrawing() const { return m_pictures.waiting() > 0; }

signals:
    /// The user wants to see a slider itself.
    void sliderChosen(const ParameterRow& row);

protected:
    bool isClosingKey(const QKeyEvent& key) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* makePage();
    void fitWidth();

    // Goes before the entries that refer to it; no longer shown, they ask for nothing.
    GuidePictures m_pictures;
    QScrollArea* m_scroll;
};

} // namespace starbloom
