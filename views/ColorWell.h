// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/FramedButton.h"

#include <QColor>
#include <QPointer>

class QColorDialog;

namespace starbloom {

/// Shows a colour, and lets the user choose another one: a click opens a colour dialog that does not block the window.
///
/// The choice is live. Cancelling the dialog gives back the colour with which it was opened. The dialog goes away with
/// the well's window, and when the well is disabled; the colour then stays what it is. Colours are opaque.
class ColorWell : public FramedButton {
    Q_OBJECT

public:
    explicit ColorWell(QWidget* parent = nullptr);
    ~ColorWell() override;

    QColor color() const { return m_color; }

    /// Shows a colour without reporting it as the user's choice.
    void setColor(const QColor& color);

    QSize sizeHint() const override;

signals:
    /// The user has chosen another colour; while the dialog is open, at each change.
    void colorPicked(const QColor& color);

protected:
    void paintContents(QPainter& painter, const QRectF& inside) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void openDialog();
    void closeDialog();
    void pick(const QColor& color);

    QColor m_color = Qt::black;
    QPointer<QColorDialog> m_dialog; ///< Nothing while it is closed.
};

} // namespace starbloom
