// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>

namespace starbloom {

/// A button with the quiet frame of the toolbar's controls; what is inside is painted by the class that derives from
/// it. The space bar and the Enter key click it. Its tool tip and its accessible name are up to who puts it in place.
/// Used on the GUI thread.
class FramedButton : public QAbstractButton {
    Q_OBJECT

public:
    explicit FramedButton(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    /// Paints into what the frame encloses. A disabled button's painter has been made to fade already.
    virtual void paintContents(QPainter& painter, const QRectF& inside) = 0;

    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace starbloom
