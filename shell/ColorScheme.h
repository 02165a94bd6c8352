// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class QDBusPendingCallWatcher;
class QDBusVariant;

namespace starbloom {

/// Follows the desktop's wish for light or dark windows, now and when it changes.
///
/// Desktops whose own theme plugin gives Qt its colours need none of this. On the others, Qt stays light whatever the
/// user has set; there the wish is asked of the desktop's portal (org.freedesktop.appearance, color-scheme, see the
/// documentation of the XDG desktop portal), without waiting for it, and a dark palette is used where it is wanted.
/// STARBLOOM_COLOR_SCHEME=light|dark overrides all of it. Needs a QApplication. GUI thread.
class ColorScheme final : public QObject {
    Q_OBJECT

public:
    ColorScheme();

private slots:
    void settingChanged(const QString& area, const QString& name, const QDBusVariant& value);

private:
    void ask();
    void answered(QDBusPendingCallWatcher* answer);
    void apply(uint wish);
    void setDark(bool dark);

    QString m_usualStyle; ///< The one that the desktop has chosen.
    bool m_dark = false;  ///< Whether our own dark palette is in use.
};

} // namespace starbloom
