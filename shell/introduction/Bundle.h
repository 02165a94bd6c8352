// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QImage>
#include <QString>

namespace starbloom {

// Files that the application carries within itself, by their names. Each is read when it is asked for. GUI thread.

/// The font in the file `name`.`type`, at a height in points. It is made known to the application at the first time. A
/// file that is not there is a programming error; the usual font stands in for one that cannot be used.
QFont fontFromBundle(const QString& name, int height, const QString& type);

/// The picture of that name in a language, "de", or else the English one, at two pixels to the point. A name that no
/// language has gives a null image.
QImage imageNamed(const QString& name, const QString& language);

} // namespace starbloom
