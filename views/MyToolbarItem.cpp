// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/MyToolbarItem.h"

namespace starbloom {

MyToolbarItem::MyToolbarItem(QObject* parent)
    : QAction(parent) {}

} // namespace starbloom
