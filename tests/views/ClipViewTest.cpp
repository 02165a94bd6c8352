// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/scrolling/CenterClipView.h"
#include "views/scrolling/ClipArithmetic.h"
#include "views/scrolling/SideClipview.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <QtTest/qtestspontaneevent.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace starbloom {

namespace {

TEST(ClipArithmetic, RoundsInSinglePrecisionAwayFromZero) {
    EXPECT_EQ(roundedToWhole(2.5), 3.0);
    EXPECT_EQ(roundedToWhole(-2.5), -3.0);
    EXPECT_EQ(roundedToWhole(2.4999), 2.0);
    EXPECT_EQ(roundedToWhole(0.49999999999), 1.0); // A half, in single precision.
    EXPECT_EQ(constrainCentred({}, {101.0, 100.0}, {106.0, 100.0}).x(), -3.0);
}

TEST(ClipArithmetic, ConstrainsWhatIsLargerAndCentresWhatIsSmaller) {
    EXPECT_EQ(constrainCentred({7.0, 9.0}, {640.0, 480.0}, {1000.0, 800.0}), QPointF(-180.0, -160.0));
    const QSizeF document(1000.0, 800.0);
    const QSizeF opening(300.0, 200.0);
    EXPECT_EQ(constrainCentred({120.4, 33.5}, document, opening), QPointF(120.0, 34.0));
    EXPECT_EQ(constrainCentred({-5.0, 9000.0}, document, opening), QPointF(0.0, 600.0));
    EXPECT_EQ(constrainCentred({5.0, 5.0}, opening, opening), QPointF(0.0, 0.0));
    EXPECT_EQ(constrainCentred({120.0, 50.0}, {1000.0, 100.0}, opening), QPointF(120.0, -50.0));
    EXPECT_EQ(constrainSideways({9.0, -17.25}, {200.0, 100.0}, opening), QPointF(-50.0, -17.25));
    EXPECT_EQ(constrainSideways({9000.0, 9000.0}, document, opening), QPointF(700.0, 600.0));
}

TEST(ClipArithmetic, KnowsWhatIsInTheMiddle) {
    const QSizeF document(1000.0, 800.0);
    EXPECT_EQ(viewPointOf({350.0, 300.0}, document, {300.0, 200.0}), QPointF(0.5, 0.5));
    EXPECT_EQ(viewPointOf({100.0, 0.0}, document, {300.0, 200.0}), QPointF(0.25, 0.125));
    EXPECT_EQ(originAround({0.25, 0.125}, document, {100.0, 60.0}), QPointF(200.0, 70.0));
    EXPECT_EQ(originAround({0.25, 0.125}, document, {1101.0, 60.0}), QPointF(-51.0, 70.0));
    EXPECT_EQ(originAtTop({12.0, 34.0}, document, {300.0, 900.4}), QPointF(12.0, -100.0));
    EXPECT_EQ(originAtTop({12.0, 34.0}, document, {300.0, 800.0}), QPointF(12.0, 34.0));
    // A document that had no size for a while.
    const QPointF lost = viewPointOf({0.0, 0.0}, {0.0, 0.0}, {0.0, 10.0});
    EXPECT_FALSE(std::isfinite(lost.x()) || std::isfinite(lost.y()));
    const QPointF origin = constrainCentred(originAround(lost, document, {300.0, 200.0}), document, {300.0, 200.0});
    EXPECT_TRUE(std::isfinite(origin.x()) && std::isfinite(origin.y()));
}

/// A clip view of a size on the screen, with a document.
template <typename View>
struct Shown {
    View view;
    QWidget* document = new QWidget;

    Shown(const QSize& opening, const QSize& size) {
        document->resize(size);
        view.setDocumentView(document);
        view.resize(opening);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }

    bool hasBars() const { return view.horizontalScrollBar()->isVisible() || view.verticalScrollBar()->isVisible(); }

    /// What of the document is in the middle of the view, from the document's top left corner.
    QPointF middle() const { return QRectF(view.viewport()->rect()).center() - document->pos(); }
};

TEST(CenterClipView, KeepsASmallDocumentInTheMiddle) {
    Shown<CenterClipView> shown({1000, 800}, {640, 480});
    EXPECT_EQ(shown.document->pos(), QPoint(180, 160));
    EXPECT_EQ(shown.view.boundsOrigin(), QPointF(-180.0, -160.0));
    shown.view.resize(801, 700);
    EXPECT_EQ(shown.document->pos(), QPoint(81, 110));
    shown.document->resize(700, 700);
    EXPECT_EQ(shown.document->pos(), QPoint(51, 0));
    EXPECT_FALSE(shown.hasBars());
    EXPECT_EQ(shown.view.focusPolicy(), Qt::NoFocus);
    shown.document->resize(0, 0);
    shown.view.resize(0, 0);
    shown.document->resize(2000, 2000);
    shown.view.resize(300, 300);
    EXPECT_TRUE(QRect({}, shown.view.viewport()->size()).intersects(shown.document->geometry()));
    shown.document->setParent(nullptr);
    shown.view.resize(400, 300);
    EXPECT_EQ(shown.view.documentView(), nullptr);
    delete shown.document;
}

TEST(CenterClipView, KeepsThePointInTheMiddleOfALargeOne) {
    Shown<CenterClipView> shown({400, 300}, {2000, 1000});
    EXPECT_TRUE(shown.hasBars());
    shown.view.horizontalScrollBar()->setValue(700);
    shown.view.verticalScrollBar()->setValue(250);
    EXPECT_EQ(shown.document->pos(), QPoint(-700, -250));
    const QPointF before = shown.middle();
    for (const QSize& size : {QSize(700, 500), QSize(301, 211), QSize(400, 300)}) {
        shown.view.resize(size);
        EXPECT_LE((shown.middle() - before).manhattanLength(), 2.0) << size.width();
        EXPECT_EQ(shown.view.horizontalScrollBar()->value(), -shown.document->x());
        EXPECT_EQ(shown.view.verticalScrollBar()->value(), -shown.document->y());
    }
    const int top = shown.document->y();
    QTest::keyClick(&shown.view, Qt::Key_Down);
    EXPECT_EQ(shown.document->y(), top - 20);
    // As a mouse tells a window that its wheel was turned, above the document.
    const QPointF place(50.0, 50.0);
    QWheelEvent wheel(place, shown.view.mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);
    qApp->notify(shown.document, &wheel);
    EXPECT_EQ(shown.document->y(), top - 80);
    // Bars that are there must not be the reason for their being there.
    shown.view.resize(600, 400);
    shown.document->resize(600, 400);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !shown.hasBars(); }));
    EXPECT_EQ(shown.document->pos(), QPoint(0, 0));
}

TEST(CenterClipView, ScrollsFromRightToLeftWhereTextsRunSo) {
    Shown<CenterClipView> shown({400, 300}, {2000, 200});
    shown.view.setLayoutDirection(Qt::RightToLeft);
    QScrollBar& bar = *shown.view.horizontalScrollBar();
    bar.setValue(bar.maximum());
    EXPECT_EQ(shown.document->x(), 0);
    bar.setValue(0);
    EXPECT_EQ(shown.document->geometry().right() + 1, shown.view.viewport()->width());
}

TEST(SideClipview, KeepsAShortDocumentAtTheTop) {
    Shown<SideClipview> shown({500, 400}, {300, 200});
    EXPECT_EQ(shown.document->pos(), QPoint(100, 0));
    EXPECT_EQ(shown.view.boundsOrigin(), QPointF(-100.0, -200.0));
    EXPECT_EQ(shown.view.grab().toImage().pixelColor(10, 10), QColor(227, 241, 255));
    shown.document->resize(300, 1000);
    EXPECT_EQ(shown.document->y(), 0);
    shown.view.verticalScrollBar()->setValue(150);
    shown.view.resize(600, 300);
    EXPECT_EQ(shown.document->y(), -150);
    shown.view.resize(600, 2000);
    EXPECT_EQ(shown.document->y(), 0);
    EXPECT_EQ(shown.document->x(), 150);
}

} // namespace

} // namespace starbloom
