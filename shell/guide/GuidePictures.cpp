// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/guide/GuidePictures.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace starbloom {

namespace {

/// A copy, in the format that windows are painted with.
QImage imageOf(const ImageBuffer& picture) {
    return QImage(picture.bytes().data(), picture.width(), picture.height(),
                  static_cast<qsizetype>(picture.bytesPerRow()), QImage::Format_RGBX8888)
        .convertToFormat(QImage::Format_RGB32);
}

} // namespace

GuidePictures::GuidePictures(std::shared_ptr<const SparkImage> image)
    : m_image(std::move(image)) {}

GuidePictures::~GuidePictures() {
    m_worker.waitForDone();
}

void GuidePictures::request(const GuideScene& scene, SliderEnd end, QSize pixels, Answer answer) {
    Request request{&scene, end, pixels, std::move(answer)};
    if (m_requests.empty()) {
        m_requests.push_back(std::move(request));
        drawNext();
        return;
    }
    const auto same = [&](const Request& each) { return each.scene == &scene && each.end == end; };
    const auto waits = std::find_if(std::next(m_requests.begin()), m_requests.end(), same);
    if (waits != m_requests.end()) {
        *waits = std::move(request);
    } else {
        m_requests.push_back(std::move(request));
    }
}

void GuidePictures::drawNext() {
    if (m_drawing == nullptr) {
        m_drawing = std::make_unique<GuideDrawing>(m_image);
    }
    const Request& next = m_requests.front();
    m_worker.start([this, scene = next.scene, end = next.end, pixels = next.pixels] {
        const QImage picture = imageOf(m_drawing->draw(*scene, end, pixels.width(), pixels.height()));
        QMetaObject::invokeMethod(
            this, [this, picture] { drawn(picture); }, Qt::QueuedConnection);
    });
}

void GuidePictures::drawn(const QImage& picture) {
    const Request done = std::move(m_requests.front());
    m_requests.pop_front();
    done.answer(picture);
    if (m_requests.empty()) {
        m_drawing.reset();
    } else {
        drawNext();
    }
}

} // namespace starbloom
