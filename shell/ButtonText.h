// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFont>

class QPushButton;

namespace starbloom {

/// The colours of titles that stand out: what brings something back, and what keeps it.
inline constexpr QColor orange(255, 165, 0);
inline constexpr QColor skyBlue(0, 160, 230);

/// Writes a button's title in a colour and a font, without one in the application's own. A face on which the title
/// could not be read is replaced by one that is dark enough, or light enough.
void setButtonText(const QColor& color, QPushButton& button, const QFont& font);
void setButtonText(const QColor& color, QPushButton& button);

} // namespace starbloom
