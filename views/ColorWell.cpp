// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ColorWell.h"

#include "views/ControlLook.h"

#include <QColorDialog>
#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>

namespace starbloom {

ColorWell::ColorWell(QWidget* parent)
    : FramedButton(parent) {
    setAccessibleDescription(m_color.name());
    connect(this, &QAbstractButton::clicked, this, &ColorWell::openDialog);
}

ColorWell::~ColorWell() {
    delete m_dialog;
}

void ColorWell::setColor(const QColor& color) {
    m_color = QColor(color.rgb());
    setAccessibleDescription(m_color.name());
    if (m_dialog != nullptr) {
        const QSignalBlocker silent(m_dialog);
        m_dialog->setCurrentColor(m_color);
    }
    update();
}

QSize ColorWell::sizeHint() const {
    return {56, controlHeight};
}

void ColorWell::paintContents(QPainter& painter, const QRectF& inside) {
    constexpr double gap = 3.0;
    constexpr double radius = 2.5;
    const QRectF swatch = onPixels(painter, inside.adjusted(gap, gap, -gap, -gap));
    QPainterPath path;
    path.addRoundedRect(swatch, radius, radius);
    painter.fillPath(path, m_color);
    // Sets off a colour that is like the ground.
    paintOutline(painter, swatch, palette(), radius);
}

void ColorWell::changeEvent(QEvent* event) {
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        closeDialog();
    }
    FramedButton::changeEvent(event);
}

bool ColorWell::eventFilter(QObject* watched, QEvent* event) {
    // In the dialog's spectrum every hue of black is black: whoever picks one there wants to see it.
    if (event->type() == QEvent::MouseButtonPress && watched != window() && m_dialog != nullptr &&
        m_dialog->currentColor().value() == 0) {
        m_dialog->setCurrentColor(Qt::white);
    }
    // A window that is minimised is hidden by the system: then the dialog stays.
    if (watched == window() && event->type() == QEvent::Hide && !event->spontaneous()) {
        closeDialog();
    }
    return FramedButton::eventFilter(watched, event);
}

void ColorWell::openDialog() {
    if (m_dialog == nullptr) {
        m_dialog = new QColorDialog(m_color, window());
        m_dialog->setAttribute(Qt::WA_DeleteOnClose);
        m_dialog->setOption(QColorDialog::DontUseNativeDialog);
        m_dialog->setWindowTitle(qtTrId("colorWellDialogTitle"));
        m_dialog->setModal(false);
        connect(m_dialog, &QColorDialog::currentColorChanged, this, &ColorWell::pick);
        connect(m_dialog, &QDialog::rejected, this, [this, openedWith = m_color] { pick(openedWith); });
        // It is deleted a little later than it closes, and a click that was on its way then counts no more.
        connect(m_dialog, &QDialog::finished, this, [this] {
            m_dialog->disconnect(this);
            m_dialog = nullptr;
        });
        window()->installEventFilter(this);
        for (auto* part : m_dialog->findChildren<QWidget*>()) {
            if (QByteArray(part->metaObject()->className()).endsWith("QColorPicker")) {
                part->installEventFilter(this);
            }
        }
    }
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}

void ColorWell::closeDialog() {
    if (m_dialog != nullptr) {
        m_dialog->accept();
    }
}

void ColorWell::pick(const QColor& color) {
    if (color.rgb() != m_color.rgb()) {
        m_color = QColor(color.rgb());
        setAccessibleDescription(m_color.name());
        update();
        emit colorPicked(m_color);
    }
}

} // namespace starbloom
