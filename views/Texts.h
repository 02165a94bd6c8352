// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QString>

#include <string_view>

namespace starbloom {

/// Loads the string table of the locale's language, or the English one when there is none, and installs it in the
/// application; likewise the toolkit's own, for its dialogs. Every text that a person sees is asked for by its key,
/// qtTrId("..."); a key that no table has shows itself. Call once, after the application object was made. False if not
/// even English could be loaded.
bool loadTexts(const QLocale& locale = QLocale::system());

/// A text whose key is put together at run time.
QString textOf(std::string_view key);

/// The language of the string table that loadTexts() has found: "en", "de".
QString textsLanguage();

} // namespace starbloom
