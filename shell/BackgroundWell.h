// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "base/DelayedCalls.h"

#include <QObject>

#include <filesystem>
#include <functional>
#include <optional>

namespace starbloom {

class ColorWell;

/// The toolbar's colour well and the file that keeps its colour.
///
/// A colour that the user picks is shown on the stage at once, and written when the choice has come to rest. At launch
/// the kept colour goes into the well alone: the stage keeps its own until the user picks again, and that is meant so.
/// What this refers to must outlive it. GUI thread.
class BackgroundWell final : public QObject {
    Q_OBJECT

public:
    using Show = std::function<void(const Color& color)>;

    BackgroundWell(ColorWell& well, std::filesystem::path file, DelayedCalls& calls, Show showOnStage);

    /// Puts the kept colour into the well, if there is one.
    void showStoredColor();

    /// Writes a colour that still waits. A failure goes to the log.
    void saveNow();

private:
    void toolBackcolorT1Changed(const Color& color);

    ColorWell& m_well;
    std::filesystem::path m_file;
    DelayedCalls& m_calls;
    Show m_showOnStage;
    std::optional<Color> m_unsaved;
    PendingCall m_pendingSave;
};

} // namespace starbloom
