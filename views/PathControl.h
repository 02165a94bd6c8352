// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/FramedButton.h"

#include <QString>

namespace starbloom {

/// Shows a folder's path as a button. What does not fit is left out of the middle of the path. Used on the GUI thread.
class PathControl : public FramedButton {
    Q_OBJECT

public:
    explicit PathControl(QWidget* parent = nullptr);

    /// The whole path, however much of it is shown.
    QString stringValue() const { return m_stringValue; }

    /// Any text may stand for a path; it is shown as it is.
    void setStringValue(const QString& value);

    QSize sizeHint() const override;

    /// Where there is no room for the text, the icon and the tool tip tell enough.
    QSize minimumSizeHint() const override;

protected:
    void paintContents(QPainter& painter, const QRectF& inside) override;

private:
    QString m_stringValue;
};

} // namespace starbloom
