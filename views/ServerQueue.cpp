// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ServerQueue.h"

#include <QGuiApplication>
#include <qguiapplication_platform.h>

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <xcb/xcb.h>

namespace starbloom {

ServerQueue ServerQueue::ofApplication() {
    // Without a screen the toolkit has this interface, too, but no connection.
    const bool connected = QGuiApplication::platformName() == QLatin1String("xcb");
    const auto* const x11 = connected ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return ServerQueue(x11 != nullptr ? xcb_get_file_descriptor(x11->connection()) : -1);
}

bool ServerQueue::isEmpty() const {
    int left = 0;
    return isKnown() && ioctl(m_socket, SIOCOUTQ, &left) == 0 && left == 0;
}

} // namespace starbloom
