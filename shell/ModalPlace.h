// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QDialog;
class QWidget;

namespace starbloom {

/// Puts a window where it seems to hang from the main window: centred on it, its top edge by some points below the main
/// window's, and moved as far as it takes to have all of it on the screen. It keeps its size; one that has none yet
/// gets the one that it asks for. Where the desktop places windows by itself, it does. GUI thread.
void placeBelowTop(QWidget& window, const QWidget& mainWindow, int distance = 30);

/// A minimized window is shown again; any other one is left alone. GUI thread.
void bringBack(QWidget& window);

/// Shows a window that may have been open before, and brings back the one that it belongs to. One that was closed while
/// it was minimized, as a desktop's bar can do, would come back minimized: out of sight, and a dialog would take the
/// main window with it. Whether what belongs to a minimized window can be seen differs between desktops. GUI thread.
void showAnew(QWidget& window);

/// Shows a dialog that is to be answered before anything else. It blocks the whole application, as a sheet of the main
/// window does anyhow: all windows are that one's companions. But a sheet that opens while a companion has the keys
/// would lose them: the toolkit then hands them to the main window, which it blocks. GUI thread.
void openModal(QDialog& dialog);

/// The same for a question that comes by itself. It does not bring back a main window that somebody has minimized,
/// which only asks for attention, and comes with it.
void openModalUnasked(QDialog& dialog);

} // namespace starbloom
