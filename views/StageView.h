// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "engine/panel/Stage.h"
#include "engine/time/EmitterPlan.h"
#include "engine/time/LayerClock.h"
#include "engine/time/Simulation.h"
#include "views/FrameSchedule.h"
#include "views/QuietShow.h"
#include "views/RasterStage.h"
#include "views/StageRenderer.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

class QPainter;
class QScreen;
class QWindow;

namespace starbloom {

/// The stage as a widget: shows a layer tree, in time, drawn on the CPU or by a renderer that it is given.
///
/// Its coordinates are device-independent pixels from the bottom left corner, and its picture has one pixel for each
/// pixel of the screen, whatever the scale factor. Resizing shows more or less of the same show.
///
/// While time runs and the window can be seen, it is redrawn at the display's rate. While the layer stands still, or
/// the window is hidden, minimised or not exposed, no timer runs and nothing is drawn. Time goes on unseen: shown
/// again, the show is where it would have been.
///
/// What it is given draws to the screen alone; captures and recordings are always the CPU's. When that renderer cannot
/// show a moment (not yet on the screen, a part of the stage out of sight, or failed for good, which is logged), the
/// CPU does.
///
/// Owns everything it needs but the layer tree, which it shares. Lives on the GUI thread; the CPU's renderer uses the
/// process's worker threads while a frame is drawn, and while nothing but the show happens a thread shows it, see
/// QuietShow.
class StageView : public QWidget, public Stage {
    Q_OBJECT

public:
    /// Smaller than this, in points, a show has no room.
    static constexpr QSize minimumStage{480, 320};

    /// A reading of a clock that never goes back.
    using ClockSource = std::function<std::chrono::nanoseconds()>;

    static std::chrono::nanoseconds steadyClock();

    /// The seed decides the show, see Simulation.
    explicit StageView(std::uint64_t seed, ClockSource clockSource = steadyClock, QWidget* parent = nullptr);
    ~StageView() override;

    /// The stage in points. Hides the widget's own size(), which says the same in whole numbers.
    Size size() const override;

    void setRootLayer(std::shared_ptr<const RootLayer> rootLayer) override;
    void layerChanged() override;

    /// Begins the show anew, at moment 0, with the numbers that the layer has now.
    void restart();

    /// From now on this one draws to the screen, beginning with the moment that is there now; nothing gives the screen
    /// back to the CPU.
    void setScreenRenderer(std::unique_ptr<StageRenderer> renderer);

    bool hasScreenRenderer() const { return m_screenRenderer != nullptr; }

    /// The present moment of the show as a picture, opaque, with one pixel for each point, whatever the screen has.
    struct Capture {
        ImageBuffer image;
        double moment = 0.0; ///< In the layer's own time, seconds.
        bool steady = true;  ///< Whether the cells' numbers have been the same from moment 0 on.
    };

    Capture capture();

    /// A second look at the show, for a recording: it begins at the present moment and goes on at its own pace.
    void beginRecording();

    /// Draws the recorded show as it is at a moment of the clock, not before the moment drawn last, into a picture with
    /// one pixel for each point. New numbers in the layer count from the next moment on. Only while recording.
    void record(std::chrono::nanoseconds moment, ImageBuffer& image);

    void endRecording();

    /// The picture that the CPU has drawn last, in pixels of the screen.
    QImage picture() {
        endQuiet();
        return m_raster.picture();
    }

    /// Whether it plays from a thread of its own, see QuietShow.
    bool playsQuietly() const { return m_quietShow.isPlaying(); }

    /// How many pictures have been drawn so far.
    std::uint64_t renderedFrames() const { return m_renderedFrames; }

    /// The moment shown last, in the layer's own time (seconds).
    double shownTime() const { return m_shownTime; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The stage is on the screen for the first time, and has the size that its window was given there.
    void appeared();

protected:
    void paintEvent(QPaintEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void watchWindow();
    void followScreen(QScreen* screen);
    bool canBeSeen() const;
    void nowSeen();
    void startOrStop();
    void restartSchedule();
    bool showDueFrame();
    void frameTimeout();
    void showChanges();
    void waitForNextFrame();
    bool playQuietly();
    QuietShow::Frame drawQuietly(const RasterTarget& target, LitArea& lit);
    void endQuiet();
    void goOnAfterQuiet();
    void passTimeUntil(std::chrono::nanoseconds moment);
    void readLayer();
    void invalidate();
    bool showOnSurface();
    bool isWholeInWindow() const;
    bool paintsWindow(const QPainter& painter) const;
    StageMoment moment() const;
    void momentShown();
    void renderInto(ImageBuffer& image, const std::optional<Simulation>& simulation, double time);
    void takePlan(const EmitterLayer& emitter);

    const std::uint64_t m_seed;
    ClockSource m_clockSource;
    std::shared_ptr<const RootLayer> m_rootLayer;
    Color m_background{0.0F, 0.0F, 0.0F, 1.0F};

    std::chrono::nanoseconds m_realTime{}; ///< Up to where m_clock has followed real time.
    LayerClock m_clock{0.0};
    std::optional<Simulation> m_simulation; ///< Nothing until there is a layer.
    bool m_steady = true;                   ///< Whether it has had that plan from the start.
    std::uint64_t m_show = 0;               ///< How often it has been begun anew.
    RasterStage m_raster{*this};
    std::unique_ptr<StageRenderer> m_screenRenderer;
    std::unique_ptr<StageRenderer> m_formerRenderer; ///< Its surface stays until what lies below it is painted.

    struct Recording {
        std::chrono::nanoseconds realTime;
        LayerClock clock;
        std::optional<Simulation> simulation;
    };

    std::optional<Recording> m_recording;

    FrameSchedule m_schedule;
    QTimer m_timer; ///< Runs towards the next frame; stopped while there is none to come.
    bool m_playing = false;
    bool m_hasAppeared = false;
    QPointer<QWindow> m_window; ///< The one whose events are watched.
    QPointer<QScreen> m_screen; ///< Where it is, and whose rate counts.
    QMetaObject::Connection m_rateConnection;

    std::atomic<double> m_shownTime = 0.0; ///< The moment that the screen has.
    bool m_stale = true;                   ///< Whether it is no longer the present one.
    std::atomic<std::uint64_t> m_renderedFrames = 0;

    std::optional<std::chrono::nanoseconds>
        m_presentedSince;  ///< From when on nothing but frames was shown, without painting.
    QuietShow m_quietShow; ///< Has all of the above while it plays.
};

} // namespace starbloom
