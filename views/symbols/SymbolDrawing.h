// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/symbols/SymbolTable.h"

#include <QColor>
#include <QPainter>

namespace starbloom {

/// Draws a symbol as large as the target allows, in its middle and in its own proportions. What the drawing leaves to
/// the current colour takes the one given. Any thread, as the painter allows.
void drawSymbol(QPainter& painter, const Symbol& symbol, const QRectF& target, const QColor& current);

} // namespace starbloom
