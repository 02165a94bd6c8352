// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ColorScheme.h"

#include "shell/DarkStyle.h"
#include "shell/ProgramStyle.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QPalette>
#include <QStyle>

namespace starbloom {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString area = QStringLiteral("org.freedesktop.appearance");
const QString name = QStringLiteral("color-scheme");

/// The portal's number for dark windows; 0 is no wish, 2 is light ones.
constexpr uint prefersDark = 1;

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QPalette darkPalette() {
    const QColor window(43, 45, 48);
    const QColor base(30, 32, 35);
    const QColor text(232, 234, 237);
    const QColor off(134, 138, 143);
    const QColor highlight(53, 132, 228);
    QPalette palette(text, QColor(58, 61, 65), QColor(78, 81, 86), QColor(20, 21, 23), QColor(36, 38, 41), text,
                     Qt::white, base, window);
    palette.setColor(QPalette::AlternateBase, QColor(37, 39, 42));
    palette.setColor(QPalette::ToolTipBase, QColor(58, 61, 65));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, off);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(120, 174, 237));
    palette.setColor(QPalette::LinkVisited, QColor(192, 152, 226));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, off);
    }
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(78, 81, 86));
    return palette;
}

} // namespace

ColorScheme::ColorScheme()
    : m_usualStyle(QApplication::style()->name()) {
    QApplication::setStyle(new ProgramStyle(m_usualStyle));
    const QByteArray forced = qgetenv("STARBLOOM_COLOR_SCHEME");
    if (forced == "light" || forced == "dark") {
        setDark(forced == "dark");
        return;
    }
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    ask();
}

void ColorScheme::ask() {
    auto question = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    question << area << name;
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &ColorScheme::answered);
}

void ColorScheme::answered(QDBusPendingCallWatcher* answer) {
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    answer->deleteLater();
    if (reply.isValid()) {
        // This method of the portal wraps its answer twice.
        const QVariant value = reply.value().variant();
        apply(value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant().toUInt() : value.toUInt());
    }
}

void ColorScheme::settingChanged(const QString& changedArea, const QString& changedName, const QDBusVariant& value) {
    if (changedArea == area && changedName == name) {
        apply(value.variant().toUInt());
    }
}

void ColorScheme::apply(uint wish) {
    // A theme plugin that has made the palette dark, or makes it light again, needs no help.
    if (m_dark || wish != prefersDark || !isDark(QApplication::palette())) {
        setDark(wish == prefersDark);
    }
}

void ColorScheme::setDark(bool dark) {
    if (dark == m_dark) {
        return;
    }
    m_dark = dark;
    if (dark) {
        QApplication::setStyle(
            new DarkStyle); // Not every style paints with the palette that it is given; this one does.
    } else {
        QApplication::setStyle(new ProgramStyle(m_usualStyle));
    }
    QApplication::setPalette(dark ? darkPalette() : QPalette());
}

} // namespace starbloom
