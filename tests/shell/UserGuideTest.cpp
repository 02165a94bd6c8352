// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/panel/ParameterTable.h"
#include "shell/Commands.h"
#include "tests/support/TemporaryFolder.h"
#include "views/ParameterSlider.h"
#include "views/Texts.h"

#include <QKeySequence>
#include <QLocale>
#include <QStringList>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

/// The rows of the first table below a heading of the user guide, as "first cell | second cell"; of so many cells.
QStringList rowsBelow(const QString& heading, int cells) {
    const QString guide = QString::fromStdString(readFile(STARBLOOM_SOURCES "/docs/user-guide.md"));
    QStringList rows;
    const QStringList lines = guide.section(QStringLiteral("\n## ") + heading + u'\n', 1, 1).split(u'\n');
    for (const QString& line : lines) {
        if (line.startsWith(u'|')) {
            rows += line.section(u'|', 1, cells).trimmed();
        } else if (!rows.isEmpty()) {
            break;
        }
    }
    return rows.mid(2); // The head and the line below it.
}

QString plain(QString title) {
    return title.remove(u'&').remove(u'…').remove(QStringLiteral("%1")).trimmed();
}

TEST(UserGuide, HasEveryKeyOfTheCommandTable) {
    QStringList expected;
    for (const CommandRow& row : commandTable()) {
        if (row.shortcut.key() != Qt::Key_unknown && row.shortcut != QKeyCombination()) {
            const QString key = QKeySequence(row.shortcut).toString(QKeySequence::PortableText);
            expected += key + QStringLiteral(" | ") + plain(textOf(row.key));
        }
    }
    QStringList told = rowsBelow(QStringLiteral("Keyboard"), 2);
    expected.sort();
    told.sort();
    EXPECT_EQ(told.join(u'\n').toStdString(), expected.join(u'\n').toStdString());
}

TEST(UserGuide, HasEverySliderWithItsRange) {
    QStringList expected;
    for (const ParameterRow& row : parameterTable) {
        const QString name = QString::fromUtf8(row.name.data(), static_cast<qsizetype>(row.name.size()));
        const QString group = name.startsWith(u'r')   ? QStringLiteral("settingsGroupRocket")
                              : name.startsWith(u'e') ? QStringLiteral("settingsGroupBurst")
                              : name.startsWith(u's') ? QStringLiteral("settingsGroupSparkle")
                                                      : QStringLiteral("settingsGroupAnimation");
        const auto number = [](float value) { return QLocale::c().toString(static_cast<double>(value)); };
        const auto shown = [&row](float position) {
            return ParameterSlider::text(row, position).replace(QChar(QChar::Nbsp), u' ');
        };
        expected += QStringLiteral("%1 | %2 | %3 to %4 (%5) | `%6` %7 to %8 (%9)")
                        .arg(textOf(group.toUtf8().constData()), textOf((name.toUtf8() + "Title").constData()),
                             shown(row.minimum), shown(row.maximum), shown(static_cast<float>(row.resetPosition)), name,
                             number(row.minimum), number(row.maximum), QString::number(row.resetPosition));
    }
    EXPECT_EQ(rowsBelow(QStringLiteral("The sliders"), 4).join(u'\n').toStdString(),
              expected.join(u'\n').toStdString());
}

TEST(UserGuide, TellsOfEverySwitchWhatTheWindowTells) {
    const QStringList told = rowsBelow(QStringLiteral("Preferences"), 2);
    ASSERT_EQ(told.size(), 6);
    for (int number = 1; number <= 5; ++number) {
        const QByteArray key = QByteArray::number(number);
        const QString title = plain(textOf(("controlPreferencesGeneral" + key).constData()));
        const QString effect = textOf(("preferencesGeneral" + key + "ToolTip").constData());
        EXPECT_EQ(told[number - 1].toStdString(), (title + QStringLiteral(" | ") + effect).toStdString());
    }
}

} // namespace

} // namespace starbloom
