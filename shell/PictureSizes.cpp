// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/PictureSizes.h"

#include "base/Log.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace starbloom {

namespace {

/// Where the program lies from this one's folder: in the build tree, and installed.
constexpr const char* places[] = {"/starbloom-picture-size",
                                  "/../" STARBLOOM_LIBEXECDIR "/starbloom/starbloom-picture-size"};

QString usualProgram() {
    const QString folder = QCoreApplication::applicationDirPath();
    const auto* found = std::find_if(std::begin(places), std::end(places), [&folder](const char* place) {
        return QFileInfo(folder + QLatin1String(place)).isExecutable();
    });
    return folder + QLatin1String(found != std::end(places) ? *found : places[1]);
}

/// Longer than any answer. A library that a file has taken over may write what it likes.
constexpr qint64 longestAnswer = 64;

QSize sizeIn(const QByteArray& answer) {
    const QList<QByteArray> numbers = answer.trimmed().split(' ');
    bool isWidth = false;
    bool isHeight = false;
    const QSize size(numbers.first().toInt(&isWidth), numbers.last().toInt(&isHeight));
    return numbers.size() == 2 && isWidth && isHeight && !size.isEmpty() ? size : QSize(0, 0);
}

} // namespace

/// One file's process. It stays until the process has ended, even if that has been answered for already.
class PictureSizes::Reading final : public QObject {
public:
    Reading(PictureSizes& owner, Request request)
        : QObject(&owner)
        , m_owner(owner)
        , m_request(std::move(request)) {
        connect(&m_process, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
            const bool isAnswer = status == QProcess::NormalExit && code == 0;
            end(isAnswer ? sizeIn(m_process.readAllStandardOutput()) : QSize(0, 0));
            deleteLater();
        });
        connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) {
                log(LogLevel::Warning, "shell",
                    "cannot start what reads the sizes of pictures; please install the program again: " +
                        m_process.errorString().toStdString());
                end(QSize(0, 0));
                deleteLater();
            }
        });
        connect(&m_process, &QProcess::readyReadStandardOutput, this, [this] {
            if (m_process.bytesAvailable() > longestAnswer) {
                kill();
            }
        });
        m_deadline.setSingleShot(true);
        m_deadline.setTimerType(Qt::PreciseTimer);
        connect(&m_deadline, &QTimer::timeout, this, [this] { kill(); });
    }

    ~Reading() override {
        m_process.disconnect(this); // Half destroyed, it cannot be told of the end.
        m_process.kill();
        m_process.waitForFinished(static_cast<int>(deadline.count()));
    }

    void start(const QString& program) {
        m_deadline.start(deadline);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(program, QStringList());
        // Not as an argument: arguments are text here, and a file's name need not be.
        m_process.write(m_request.path.c_str(), static_cast<qint64>(m_request.path.native().size()));
        m_process.closeWriteChannel();
    }

private:
    void kill() {
        m_process.kill();
        end(QSize(0, 0)); // At once: a process that waits for a disk outlives its end by any time.
    }

    void end(const QSize& size) {
        if (const Answer answer = std::exchange(m_request.answer, nullptr)) {
            m_deadline.stop();
            m_owner.ended(answer, size);
        }
    }

    PictureSizes& m_owner;
    Request m_request; ///< Without the answer's call once it has been answered.
    QProcess m_process;
    QTimer m_deadline;
};

PictureSizes::PictureSizes(QString program)
    : m_program(std::move(program)) {}

PictureSizes::~PictureSizes() = default;

void PictureSizes::read(const std::filesystem::path& path, Answer answer) {
    m_waiting.push_back({path, std::move(answer)});
    startWaiting();
}

void PictureSizes::readAtOnce(const std::filesystem::path& path, Answer answer) {
    start({path, std::move(answer)});
}

void PictureSizes::startWaiting() {
    const int most = std::clamp(QThread::idealThreadCount(), 1, 4);
    while (m_running < most && !m_waiting.empty()) {
        Request next = std::move(m_waiting.front());
        m_waiting.pop_front();
        start(std::move(next));
    }
}

void PictureSizes::start(Request request) {
    if (m_program.isEmpty()) {
        m_program = usualProgram();
    }
    ++m_running;
    (new Reading(*this, std::move(request)))->start(m_program);
}

void PictureSizes::ended(const Answer& answer, const QSize& size) {
    --m_running;
    // Later, for whoever is answered may destroy this object, whose process is just telling of its end.
    QMetaObject::invokeMethod(
        this,
        [this, answer, size] {
            startWaiting();
            answer(size);
        },
        Qt::QueuedConnection);
}

} // namespace starbloom
