// SPDX-License-Identifier: GPL-3.0-or-later

// What showing sparks in a window costs, from their motion to the finished frame in the screen's hands:
//
//     stage_bench --sparks 20000 --size 1920x1080 --seconds 5 [--fps 60] [--picture FILE]
//     stage_bench --bare ...
//
// prints one line with the frames per second and the processor time of all threads per frame, after a warm-up. Each
// spark of 12 points is born at a random place, flies with its own velocity and a slight gravity, fades over its life
// of two seconds, and is born again. With --fps 0 frames follow one another as fast as they can. With --bare the bare
// limit of the machine is measured instead, see BareBlit, without a window and on one thread.

#include "bench/BareBlit.h"
#include "bench/Glow.h"
#include "engine/raster/FrameCrew.h"
#include "views/FrameSchedule.h"
#include "views/RasterStage.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QPaintEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <random>

namespace {

using namespace starbloom;
using namespace std::chrono_literals;

constexpr auto warmUp = 2500ms; ///< Longer than a spark's life: all sizes and alphas have been seen.

/// Processor time of all threads so far, in milliseconds.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1.0e3 + static_cast<double>(time.tv_nsec) * 1.0e-6;
}

std::chrono::nanoseconds now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

/// Counts frames between two moments.
class Meter {
public:
    void begin() {
        m_frames = 0;
        m_began = now();
        m_processorTime = processorTime();
    }

    void countFrame() { ++m_frames; }

    void print(const char* engine, std::size_t sparks, const QSize& size) const {
        const double seconds = std::chrono::duration<double>(now() - m_began).count();
        const double time = processorTime() - m_processorTime;
        std::printf("{\"engine\":\"%s\",\"sparks\":%zu,\"width\":%d,\"height\":%d,\"fps\":%.2f,"
                    "\"cpu_ms_per_frame\":%.4f}\n",
                    engine, sparks, size.width(), size.height(), m_frames / seconds, time / std::max(m_frames, 1));
    }

private:
    int m_frames = 0;
    std::chrono::nanoseconds m_began{};
    double m_processorTime = 0.0;
};

/// As many sparks as ever: the one that dies is born again. They stand in the order of their births, round and round.
class Scene {
public:
    Scene(const QSize& size, std::size_t count)
        : m_size(size)
        , m_batch({0, lifetime, -10.0F, 0.0F, 0.0F, {0.0F, 0.0F, 0.0F, -1.0F / lifetime}, glow()}) {
        for (std::size_t i = 0; i < count; ++i) {
            const double share = static_cast<double>(i) / static_cast<double>(count);
            m_batch.append(birthAt((share - 1.0) * static_cast<double>(lifetime)));
        }
    }

    void advanceTo(double time) {
        while (SparkBatch::age(m_batch.time[m_oldest], time) >= lifetime) {
            const SparkBirth birth = birthAt(m_batch.time[m_oldest] + static_cast<double>(lifetime));
            m_batch.time[m_oldest] = birth.time;
            m_batch.x[m_oldest] = birth.x;
            m_batch.y[m_oldest] = birth.y;
            m_batch.velocityX[m_oldest] = birth.velocityX;
            m_batch.velocityY[m_oldest] = birth.velocityY;
            m_batch.red[m_oldest] = birth.color.red;
            m_batch.green[m_oldest] = birth.color.green;
            m_batch.blue[m_oldest] = birth.color.blue;
            m_oldest = (m_oldest + 1) % m_batch.size();
        }
    }

    const SparkBatch& sparks() const { return m_batch; }

private:
    static constexpr float lifetime = 2.0F;

    float random(float lowest, float highest) {
        return std::uniform_real_distribution<float>(lowest, highest)(m_random);
    }

    SparkBirth birthAt(double time) {
        return {time,
                random(0.0F, static_cast<float>(m_size.width())),
                random(0.0F, static_cast<float>(m_size.height())),
                random(-20.0F, 20.0F),
                random(-20.0F, 20.0F),
                1.0F,
                Color{random(0.0F, 1.0F), random(0.0F, 1.0F), random(0.0F, 1.0F), 1.0F}};
    }

    QSize m_size;
    std::mt19937 m_random{1};
    SparkBatch m_batch;
    std::size_t m_oldest = 0;
};

/// Plays the scene as the stage plays a show, and counts what has been painted. At a rate of 0 the next frame begins as
/// soon as the last one has been painted, a sixtieth of a second later in the scene.
class BenchStage final : public QWidget {
public:
    BenchStage(const QSize& size, std::size_t sparks, double rate, QWidget& window)
        : QWidget(&window)
        , m_scene(size, sparks)
        , m_rate(rate) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setFixedSize(size);
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout(this, [this] { showDueFrame(); });
    }

    void play() {
        m_began = now();
        m_schedule.start(m_began, m_rate);
        m_timer.start(0);
    }

    Meter& meter() { return m_meter; }

    QImage picture() const { return m_raster.picture(); }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        if (!m_raster.fits(painter)) {
            m_raster.renderFor(painter, moment());
        }
        m_raster.paint(painter, event->region());
        m_meter.countFrame();
    }

private:
    void showDueFrame() {
        const auto due = m_rate > 0.0 ? m_schedule.takeDueFrame(now()) : now();
        if (due) {
            m_time = m_rate > 0.0 ? std::chrono::duration<double>(*due - m_began).count() : m_time + 1.0 / 60.0;
            m_scene.advanceTo(m_time);
            if (m_raster.present(moment())) {
                m_meter.countFrame();
            } else if (m_raster.isPlaced()) {
                update(m_raster.render(moment()));
            } else {
                update();
            }
        }
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(m_schedule.untilNextFrame(now()));
        m_timer.start(m_rate > 0.0 ? std::max(wait, 1ms) : 0ms);
    }

    StageMoment moment() const { return {{&m_scene.sparks(), 1}, m_time, {0.0F, 0.0F, 0.0F, 1.0F}, 0}; }

    Scene m_scene;
    double m_rate;
    RasterStage m_raster{*this};
    FrameSchedule m_schedule;
    QTimer m_timer;
    std::chrono::nanoseconds m_began{};
    double m_time = 0.0;
    Meter m_meter;
};

void measureBare(const QSize& size, std::size_t sparks, std::chrono::milliseconds length) {
    BareBlit bare(size.width(), size.height(), sparks);
    FrameCrew alone(1);
    Meter meter;
    int frame = 0;
    const auto drawFor = [&](std::chrono::milliseconds some) {
        meter.begin();
        for (const auto end = now() + some; now() < end;) {
            bare.drawFrame(static_cast<float>(frame++ % 60) / 60.0F, alone);
            meter.countFrame();
        }
    };
    drawFor(warmUp / 2);
    drawFor(length);
    meter.print("bare blit", sparks, size);
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOptions({{"sparks", "Living sparks.", "number", "20000"},
                        {"size", "Pixels of the stage.", "WxH", "1920x1080"},
                        {"seconds", "Length of the measurement.", "number", "5"},
                        {"fps", "Frames per second, 0 for as many as there can be.", "number", "60"},
                        {"picture", "Where to keep the last picture, to look at it.", "file"},
                        {"bare", "Measure the machine's bare limit."}});
    options.process(application);
    const QStringList size = options.value("size").split('x');
    const QSize pixels(size.value(0).toInt(), size.value(1).toInt());
    const std::size_t sparks = options.value("sparks").toULongLong();
    const std::chrono::milliseconds length(static_cast<int>(options.value("seconds").toDouble() * 1000.0));
    if (pixels.isEmpty() || sparks == 0 || length <= 0ms) {
        options.showHelp(2);
    }
    if (options.isSet("bare")) {
        measureBare(pixels, sparks, length);
        return 0;
    }
    QWidget window;
    window.setFixedSize(pixels);
    BenchStage stage(pixels, sparks, options.value("fps").toDouble(), window);
    window.show();
    stage.play();
    QTimer::singleShot(warmUp, &stage, [&] { stage.meter().begin(); });
    QTimer::singleShot(warmUp + length, &stage, [&] {
        stage.meter().print("starbloom", sparks, pixels);
        if (options.isSet("picture")) {
            stage.picture().save(options.value("picture"));
        }
        QCoreApplication::quit();
    });
    return QApplication::exec();
}
