// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/introduction/Bundle.h"

#include "base/Log.h"

#include <QFile>
#include <QFontDatabase>
#include <QHash>

// The macro inside must not stand in a namespace.
static void linkResources() {
    Q_INIT_RESOURCE(introduction);
}

namespace starbloom {

namespace {

constexpr double pixelsPerPoint = 2.0;

QString loadedFamily(const QString& file) {
    linkResources();
    Q_ASSERT_X(QFile::exists(file), "fontFromBundle", qPrintable(file));
    const QStringList families = QFontDatabase::applicationFontFamilies(QFontDatabase::addApplicationFont(file));
    if (families.isEmpty()) {
        log(LogLevel::Warning, "shell", "the font " + file.toStdString() + " cannot be used");
    }
    return families.value(0);
}

} // namespace

QFont fontFromBundle(const QString& name, int height, const QString& type) {
    static QHash<QString, QString> families; // Loading a file again would take its memory again.
    const QString file = QStringLiteral(":/fonts/%1.%2").arg(name, type);
    auto family = families.find(file);
    if (family == families.end()) {
        family = families.insert(file, loadedFamily(file));
    }
    QFont font;
    if (!family->isEmpty()) {
        font = QFont(*family);
    }
    font.setPixelSize(height);
    return font;
}

QImage imageNamed(const QString& name, const QString& language) {
    linkResources();
    for (const QString& folder : {language, QStringLiteral("en")}) {
        for (const char* type : {"jpg", "png"}) {
            const QString file = QStringLiteral(":/introduction/%1/%2.%3").arg(folder, name, QLatin1String(type));
            if (QFile::exists(file)) {
                QImage image(file, type); // Told the type, the toolkit looks at no other plugin.
                image.setDevicePixelRatio(pixelsPerPoint);
                return image;
            }
        }
    }
    return {};
}

} // namespace starbloom
