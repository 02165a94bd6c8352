// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ColorWell.h"
#include "views/ControlLook.h"
#include "views/PathControl.h"
#include "views/ResultLine.h"
#include "views/SegmentedControl.h"
#include "views/SymbolIcon.h"
#include "views/symbols/SymbolDrawing.h"

#include <QAccessible>
#include <QApplication>
#include <QColorDialog>
#include <QFile>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTest>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

QPalette palette(QColor ground, QColor text) {
    return {text, ground, ground, ground, ground, text, ground};
}

const QPalette light = palette(QColor(0xef, 0xef, 0xef), Qt::black);
const QPalette dark = palette(QColor(0x35, 0x35, 0x35), Qt::white);

/// The strongest contrast in a picture to what it lies on.
double strongest(const QImage& picture, const QColor& ground) {
    double found = 1.0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            found = std::max(found, contrast(picture.pixelColor(x, y), ground));
        }
    }
    return found;
}

QImage onGround(const QIcon& icon, int side, double scale, QIcon::Mode mode, const QColor& ground) {
    QImage image(QSize(side, side) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(ground);
    QPainter painter(&image);
    icon.paint(&painter, QRect(0, 0, side, side), Qt::AlignCenter, mode);
    return image;
}

int largestDifference(const QImage& a, const QImage& b) {
    int largest = 0;
    for (qsizetype i = 0; i < a.sizeInBytes(); ++i) {
        largest = std::max(largest, std::abs(a.constBits()[i] - b.constBits()[i]));
    }
    return largest;
}

TEST(SymbolIcon, StandsOutOnLightAndDarkWithoutBeingMadeAgain) {
    const QPalette before = QApplication::palette();
    for (const Symbol& symbol : symbolTable()) {
        const QIcon icon = symbolIcon(QString::fromLatin1(symbol.name));
        for (const QPalette& desktop : {light, dark}) {
            QApplication::setPalette(desktop);
            const QColor ground = desktop.color(QPalette::Window);
            const double normal = strongest(onGround(icon, 24, 1.25, QIcon::Normal, ground), ground);
            const double disabled = strongest(onGround(icon, 24, 1.25, QIcon::Disabled, ground), ground);
            EXPECT_GT(normal, 9.0) << symbol.name;
            EXPECT_GT(disabled, 2.0) << symbol.name;
            EXPECT_LT(disabled, normal / 2.0) << symbol.name;
        }
    }
    QApplication::setPalette(before);
    EXPECT_EQ(symbolIcon(u"play").pixmap(QSize(24, 24), 2.0).size(), QSize(48, 48));
}

TEST(SymbolDrawing, ShowsWhatTheDrawingsSay) {
    for (const Symbol& symbol : symbolTable()) {
        QFile file(QStringLiteral(STARBLOOM_ICONS "/%1.svg").arg(QLatin1String(symbol.name)));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QSvgRenderer renderer(file.readAll().replace("currentColor", "#336699"));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        for (const QSize size : {QSize(16, 16), QSize(23, 30), QSize(256, 256)}) {
            QImage expected(size, QImage::Format_ARGB32_Premultiplied);
            expected.fill(Qt::transparent);
            QImage drawn = expected;
            QPainter wanted(&expected);
            renderer.render(&wanted);
            QPainter painter(&drawn);
            drawSymbol(painter, symbol, drawn.rect(), QColor(0x33, 0x66, 0x99));
            // The library rounds the corners of rectangles to whole percents; a shape too few would be 255.
            EXPECT_LE(largestDifference(drawn, expected), 60) << symbol.name << " at " << size.width();
        }
    }
}

TEST(ControlLook, WhatMustBeReadCanBeRead) {
    for (QPalette desktop : {light, dark}) {
        const QColor window = desktop.color(QPalette::Window);
        EXPECT_GE(contrast(errorColor(desktop), window), textContrast);
        for (const QColor link : {QColor(0, 0, 255), QColor(0x80, 0xc0, 0xff), window}) {
            desktop.setColor(QPalette::Link, link);
            EXPECT_GE(contrast(linkColor(desktop), window), textContrast);
        }
    }
}

TEST(ColorWell, ShowsTheChoiceLiveAndCancellingTakesItBack) {
    QWidget window;
    auto* well = new ColorWell(&window);
    window.show();
    QSignalSpy picked(well, &ColorWell::colorPicked);
    well->setColor(Qt::blue);
    QTest::keyClick(well, Qt::Key_Return);
    auto* dialog = window.findChild<QColorDialog*>();
    ASSERT_NE(dialog, nullptr);
    well->click();
    EXPECT_EQ(window.findChildren<QColorDialog*>().size(), 1);
    EXPECT_FALSE(dialog->isModal());
    EXPECT_EQ(dialog->currentColor(), QColor(Qt::blue));
    EXPECT_EQ(picked.count(), 0);
    dialog->setCurrentColor(Qt::green);
    EXPECT_EQ(well->color(), QColor(Qt::green));
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(well->color(), QColor(Qt::blue));
    ASSERT_EQ(picked.count(), 2);
    EXPECT_EQ(picked.last().first().value<QColor>(), QColor(Qt::blue));

    // A click into its spectrum was on its way when it closed.
    for (QWidget* part : dialog->findChildren<QWidget*>()) {
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(1.0, 1.0), QPointF(1.0, 1.0), Qt::LeftButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(part, &press);
    }
    EXPECT_EQ(picked.count(), 2);

    well->click(); // At once, before the old dialog has been deleted.
    dialog = window.findChildren<QColorDialog*>().last();
    dialog->setCurrentColor(Qt::red);
    const QPointer<QColorDialog> open = dialog;
    window.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(open.isNull());
    EXPECT_EQ(well->color(), QColor(Qt::red));
}

TEST(SegmentedControl, IsARowOfRadioButtonsToKeysAndToAssistivePrograms) {
    SegmentedControl control;
    EXPECT_EQ(control.selectedSegment(), -1);
    control.addSegment(symbolIcon(u"play"), QStringLiteral("On"));
    control.addSegment(symbolIcon(u"pause"), QStringLiteral("Off"));
    EXPECT_EQ(control.sizeHint(), QSize(98, 32));
    QSignalSpy selected(&control, &SegmentedControl::segmentSelected);
    control.setSelectedSegment(1);
    const auto segments = control.findChildren<QAbstractButton*>();
    EXPECT_FALSE(segments[0]->focusPolicy() & Qt::TabFocus);
    EXPECT_TRUE(segments[1]->focusPolicy() & Qt::TabFocus);
    control.setSelectedSegment(0);
    EXPECT_EQ(selected.count(), 0);

    control.show();
    control.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&control));
    segments[0]->setFocus(Qt::TabFocusReason);
    QTest::keyClick(segments[0], Qt::Key_Right);
    EXPECT_EQ(control.selectedSegment(), 1);
    QTest::mouseClick(segments[1], Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_EQ(selected.count(), 1);
    EXPECT_FALSE(segments[0]->focusPolicy() & Qt::TabFocus);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(segments[1]);
    EXPECT_EQ(accessible->role(), QAccessible::RadioButton);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Off"));
    EXPECT_TRUE(accessible->state().checked);
}

TEST(PathControl, TakesAnyPathAsItIs) {
    PathControl control;
    const auto folder = QStringLiteral("/home/me/<b>R&D</b>/") + QString(200, u'x');
    control.setStringValue(folder);
    EXPECT_EQ(control.stringValue(), folder);
    EXPECT_TRUE(control.toolTip().contains(folder.toHtmlEscaped()));
    EXPECT_EQ(control.sizeHint(), QSize(180, 32));
    QFont large = control.font();
    large.setPointSize(40);
    control.setFont(large);
    EXPECT_GT(control.sizeHint().width(), QFontMetrics(large).horizontalAdvance(QStringLiteral("/Users/??\?/??\?")));
    QSignalSpy clicked(&control, &QAbstractButton::clicked);
    QTest::keyClick(&control, Qt::Key_Space);
    QTest::keyClick(&control, Qt::Key_Enter);
    EXPECT_EQ(clicked.count(), 2);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&control)->role(), QAccessible::Button);
}

TEST(ResultLine, TellsEveryMessageAndFollowsItsLink) {
    ResultLine line;
    line.resize(200, 22);
    line.show();
    EXPECT_EQ(line.minimumHeight(), 22);
    EXPECT_LE(line.sizeHint().height(), 22);
    const auto told = [&line] {
        return QAccessible::queryAccessibleInterface(line.findChild<QLabel*>())->text(QAccessible::Name);
    };
    int followed = 0;
    const QString message = QStringLiteral("Saved <b>&amp;") + QString(100, u'x');
    line.showResult(message, {{QStringLiteral("R&D"), [&] { ++followed; }}});
    auto* link = line.findChild<QAbstractButton*>();
    QCoreApplication::processEvents();
    EXPECT_EQ(told(), message);
    EXPECT_LE(link->geometry().right(), 200);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(link)->text(QAccessible::Name), QStringLiteral("R&D"));
    QTest::keyClick(link, Qt::Key_Return);
    EXPECT_EQ(followed, 1);
    line.showError(QStringLiteral("No space"));
    EXPECT_EQ(told(), QStringLiteral("Error: No space"));
    EXPECT_FALSE(link->isVisible());
    line.clear();
    EXPECT_EQ(line.text(), QString());
    EXPECT_EQ(told(), QString());
}

} // namespace

} // namespace starbloom
