// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/StageRenderer.h"
#include "views/opengl/GlSurface.h"
#include "views/opengl/OpenGlPainter.h"

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace starbloom {

/// The stage drawn with OpenGL. A context that is lost, or that fails, is made again with all that it had, the births
/// of the present moment included; one that keeps failing is given up.
class OpenGlStage final : public StageRenderer {
public:
    /// How long the machine has been asleep, all in all.
    using SleepClock = std::function<std::chrono::nanoseconds()>;

    static std::chrono::nanoseconds timeAsleep();

    OpenGlStage(std::unique_ptr<GlSurface> surface, std::vector<PreparedImage> prepared,
                SleepClock sleepClock = timeAsleep);
    ~OpenGlStage() override;

    void place(QWindow& window, const QRect& stage) override { m_surface->place(window, stage); }

    void withdraw() override { m_surface->withdraw(); }

    Outcome show(const StageMoment& moment) override;

private:
    void dropWhatSleepMayHaveSpoiled();
    Result<void> draw(const StageMoment& moment);

    std::unique_ptr<GlSurface> m_surface;
    std::vector<PreparedImage> m_prepared;
    std::unique_ptr<OpenGlPainter> m_painter; ///< Nothing until the first frame, and after a loss.
    int m_losses = 0;
    SleepClock m_sleepClock;
    std::chrono::nanoseconds m_asleep;
};

} // namespace starbloom
