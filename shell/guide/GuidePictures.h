// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/guide/GuideDrawing.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QThreadPool>

#include <deque>
#include <functional>
#include <memory>

namespace starbloom {

/// Has the guide's pictures drawn, one after the other, while the window goes on.
///
/// How threads share the work: the queue belongs to the GUI thread, on which all functions are called and answers
/// arrive. A worker thread of its own draws one picture at a time and nothing else. At its end the object waits for the
/// picture in hand, some milliseconds.
class GuidePictures final : public QObject {
    Q_OBJECT

public:
    explicit GuidePictures(std::shared_ptr<const SparkImage> image);
    ~GuidePictures() override;

    using Answer = std::function<void(const QImage& picture)>;

    /// Asks for a picture; it arrives on a later turn of the event loop. An earlier request for the same
    /// scene and end is replaced if it still waits.
    void request(const GuideScene& scene, SliderEnd end, QSize pixels, Answer answer);

    /// How many requests have not been answered.
    std::size_t waiting() const { return m_requests.size(); }

private:
    struct Request {
        const GuideScene* scene;
        SliderEnd end;
        QSize pixels;
        Answer answer;
    };

    void drawNext();
    void drawn(const QImage& picture);

    std::shared_ptr<const SparkImage> m_image;
    std::unique_ptr<GuideDrawing> m_drawing; ///< Only while there is something to draw.
    std::deque<Request> m_requests;          ///< The first one is being drawn.
    QThreadPool m_worker;
};

} // namespace starbloom
