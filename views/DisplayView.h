// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QWidget>

namespace starbloom {

/// Shows one picture in its middle, at its natural size in points: a picture with twice the pixels to the point counts
/// half. One that is larger than the view is cropped equally on both sides.
///
/// The view has no ground of its own; what lies behind it shows through the picture's transparent parts. GUI thread.
class DisplayView : public QWidget {
    Q_OBJECT

public:
    explicit DisplayView(QWidget* parent = nullptr);

    /// An empty image shows nothing.
    void setImage(const QImage& image);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_myImage;
};

} // namespace starbloom
