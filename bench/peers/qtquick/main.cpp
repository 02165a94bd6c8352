// SPDX-License-Identifier: GPL-3.0-or-later

// The scene of sparks in Qt Quick Particles, in a window:
//
//     qtquick_bench --sparks 20000 --size 1920x1080 --seconds 5 [--picture FILE]
//
// prints one line with the frames per second and the processor time of all threads per frame, after a warm-up. A frame
// counts when it has been handed to the screen.

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QImage>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickView>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace {

using namespace std::chrono_literals;
using Seconds = std::chrono::duration<double>;

constexpr Seconds warmUp = 1.5s;
constexpr int fewestFrames = 10;

/// A white glow as wide as it is asked for, with its light as alpha.
class GlowProvider final : public QQuickImageProvider {
public:
    GlowProvider()
        : QQuickImageProvider(QQuickImageProvider::Image) {}

    QImage requestImage(const QString& id, QSize* size, const QSize& /*requested*/) override {
        const int side = id.toInt();
        QImage image(side, side, QImage::Format_RGBA8888_Premultiplied);
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                const double r = std::hypot(x + 0.5 - side / 2.0, y + 0.5 - side / 2.0) / (side / 2.0);
                const double light = r < 1.0 ? std::exp(-6.0 * r * r) * (1.0 - r * r) : 0.0;
                image.setPixelColor(x, y, QColor(255, 255, 255, static_cast<int>(std::lround(light * 255.0))));
            }
        }
        *size = image.size();
        return image;
    }
};

/// Processor time of all threads so far, in milliseconds.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1.0e3 + static_cast<double>(time.tv_nsec) * 1.0e-6;
}

/// Counts frames from the first one after the warm-up to the first one after the measured length.
class Meter {
public:
    explicit Meter(Seconds length)
        : m_length(length) {}

    /// Whether this was the last frame.
    bool countFrame() {
        ++m_frames;
        const Seconds passed = std::chrono::steady_clock::now() - m_began;
        if (m_frames < fewestFrames || passed < (m_isWarm ? m_length : warmUp)) {
            return false;
        }
        if (m_isWarm) {
            m_framesPerSecond = m_frames / passed.count();
            m_timePerFrame = (processorTime() - m_processorTime) / m_frames;
            return true;
        }
        m_isWarm = true;
        m_frames = 0;
        m_began = std::chrono::steady_clock::now();
        m_processorTime = processorTime();
        return false;
    }

    double framesPerSecond() const { return m_framesPerSecond; }

    double timePerFrame() const { return m_timePerFrame; }

private:
    Seconds m_length;
    bool m_isWarm = false;
    int m_frames = 0;
    std::chrono::steady_clock::time_point m_began = std::chrono::steady_clock::now();
    double m_processorTime = 0.0;
    double m_framesPerSecond = 0.0;
    double m_timePerFrame = 0.0;
};

} // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    options.addOptions({{"sparks", "Living sparks.", "number", "20000"},
                        {"size", "Pixels of the window.", "WxH", "1920x1080"},
                        {"seconds", "Length of the measurement.", "number", "5"},
                        {"picture", "Where to keep the last picture, to look at it.", "file"}});
    options.process(application);
    const QStringList size = options.value("size").split('x');

    QQuickView view;
    view.engine()->addImageProvider("glow", new GlowProvider); // the engine deletes it
    view.setInitialProperties({{"sparks", options.value("sparks").toInt()}});
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.resize(size.value(0).toInt(), size.value(1).toInt());
    view.setSource(QUrl("qrc:/Scene.qml"));
    if (view.status() != QQuickView::Ready) {
        return 1; // it has said why
    }

    QByteArray renderer;
    const auto askRenderer = [&] {
        if (const auto* context = QOpenGLContext::currentContext()) {
            renderer = reinterpret_cast<const char*>(context->functions()->glGetString(GL_RENDERER));
        }
    };
    QObject::connect(&view, &QQuickWindow::sceneGraphInitialized, &view, askRenderer, Qt::DirectConnection);
    Meter meter(Seconds(options.value("seconds").toDouble()));
    const auto countFrame = [&] {
        if (meter.countFrame()) {
            QObject::disconnect(&view, &QQuickWindow::frameSwapped, nullptr, nullptr);
            std::printf("{\"engine\":\"Qt Quick Particles %s on %s\",\"fps\":%.2f,\"cpu_ms_per_frame\":%.4f}\n",
                        qVersion(), renderer.constData(), meter.framesPerSecond(), meter.timePerFrame());
            if (options.isSet("picture")) {
                view.grabWindow().save(options.value("picture"));
            }
            QCoreApplication::quit();
        }
    };
    QObject::connect(&view, &QQuickWindow::frameSwapped, &view, countFrame, Qt::QueuedConnection);
    view.show();
    return QGuiApplication::exec();
}
