// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSize>
#include <QString>

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>

namespace starbloom {

/// Finds out the sizes of pictures, whatever files they are in, without keeping the window waiting.
///
/// Each file is read by a process of its own, the program starbloom-picture-size, which limits its memory and its time
/// itself and is killed when it does not answer in time. So a hostile file, or one on a disk that hangs, costs a second
/// at most, and the answer is that it is no picture. GUI thread.
class PictureSizes final : public QObject {
    Q_OBJECT

public:
    using Answer = std::function<void(const QSize& size)>;

    /// How long a process may take, from its start.
    static constexpr std::chrono::milliseconds deadline{1000};

    /// Without a program's path, the program is looked for at the first file: beside this one, as in the build tree,
    /// and where it was installed to.
    explicit PictureSizes(QString program = {});
    ~PictureSizes() override;

    /// Answers later, once, with the size in pixels, 0 by 0 for what cannot be read as a picture; never after this
    /// object has been destroyed. A few files are read at a time and the others wait; answers may come in any order.
    void read(const std::filesystem::path& path, Answer answer);

    /// The same for a file that somebody waits for: it is not kept waiting by others.
    void readAtOnce(const std::filesystem::path& path, Answer answer);

private:
    class Reading;

    struct Request {
        std::filesystem::path path;
        Answer answer;
    };

    void startWaiting();
    void start(Request request);
    void ended(const Answer& answer, const QSize& size);

    QString m_program;
    std::deque<Request> m_waiting;
    int m_running = 0;
};

} // namespace starbloom
