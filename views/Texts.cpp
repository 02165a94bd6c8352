// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/Texts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <string>

// The macro inside must not stand in a namespace.
static void linkResources() {
    Q_INIT_RESOURCE(starbloom);
}

namespace starbloom {

bool loadTexts(const QLocale& locale) {
    linkResources();
    auto* toolkit = new QTranslator(QCoreApplication::instance());
    if (toolkit->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
                      QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(toolkit);
    }
    auto* texts = new QTranslator(QCoreApplication::instance());
    const bool loaded =
        texts->load(locale, QStringLiteral("starbloom"), QStringLiteral("_"), QStringLiteral(":/texts")) ||
        texts->load(QStringLiteral(":/texts/starbloom_en.qm"));
    return loaded && QCoreApplication::installTranslator(texts);
}

QString textOf(std::string_view key) {
    return qtTrId(std::string(key).c_str());
}

QString textsLanguage() {
    for (const QTranslator* each : QCoreApplication::instance()->findChildren<QTranslator*>()) {
        if (each->filePath().startsWith(u":/texts/")) {
            return each->language();
        }
    }
    return QStringLiteral("en");
}

} // namespace starbloom
