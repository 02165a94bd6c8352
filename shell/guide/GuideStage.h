// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "shell/guide/GuideScenes.h"

#include <QImage>
#include <QWidget>

namespace starbloom {

/// A small stage of the guide: a picture with rounded corners, black until it has one.
///
/// It says in which size it wants its picture, in pixels of the screen, whenever that changes; until the new one comes,
/// the old one is stretched. Its height follows from its width. Used on the GUI thread.
class GuideStage final : public QWidget {
    Q_OBJECT

public:
    explicit GuideStage(QWidget* parent = nullptr);

    /// Ignored if it is not of the size that was asked for last.
    void setPicture(const QImage& picture);

    const QImage& picture() const { return m_picture; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    bool hasHeightForWidth() const override { return true; }

    int heightForWidth(int width) const override;

signals:
    void pictureWanted(QSize pixels);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void askIfNeeded();

    QSize m_wanted; ///< Pixels; what was asked for last.
    QImage m_picture;
};

} // namespace starbloom
