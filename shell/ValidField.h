// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QLineEdit;

namespace starbloom {

/// Shows a field's text in the usual colour, or in that of errors, readable on light and on dark. GUI thread.
void showAsValid(QLineEdit& field, bool valid);

} // namespace starbloom
