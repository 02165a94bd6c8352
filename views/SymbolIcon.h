// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QIcon>
#include <QStringView>

namespace starbloom {

/// The icon that resources/icons/<name>.svg draws. What the drawing leaves to the current colour takes the application
/// palette's colour at the moment of painting, so an icon made once stays right when the desktop changes between light
/// and dark. Disabled it fades, selected it has the colour of highlighted text. It is drawn anew for every size and
/// every scale factor. A name without a drawing is a programming error. GUI thread.
QIcon symbolIcon(QStringView name);

} // namespace starbloom
