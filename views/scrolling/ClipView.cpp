// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/scrolling/ClipView.h"

#include "views/scrolling/ClipArithmetic.h"

#include <QEvent>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <cmath>

namespace starbloom {

namespace {

/// What an arrow key or a notch of the wheel moves by (the wheel by three). Points.
constexpr int step = 20;

/// A document without a size leads to places that are no numbers.
int wholeOrNone(double value) {
    return std::isfinite(value) ? static_cast<int>(value) : 0;
}

} // namespace

ClipView::ClipView(QWidget* parent)
    : QAbstractScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    horizontalScrollBar()->setSingleStep(step);
    verticalScrollBar()->setSingleStep(step);
}

void ClipView::setDocumentView(QWidget* document) {
    if (m_document != nullptr) {
        m_document->removeEventFilter(this);
    }
    m_document = document;
    if (document != nullptr) {
        document->setParent(viewport());
        document->installEventFilter(this);
        document->show();
    }
    frameChanged();
}

QWidget* ClipView::documentView() const {
    return m_document != nullptr && m_document->parentWidget() == viewport() ? m_document.data() : nullptr;
}

QSizeF ClipView::documentSize() const {
    const QWidget* document = documentView();
    return document != nullptr ? document->size() : QSizeF(0.0, 0.0);
}

QSizeF ClipView::openingSize() const {
    return viewport()->size();
}

QPointF ClipView::boundsOrigin() const {
    const QWidget* document = documentView();
    const QPointF place = document != nullptr ? document->pos() : QPointF();
    return {-place.x(), place.y() + documentSize().height() - openingSize().height()};
}

QPointF ClipView::constrainScrollPoint(const QPointF& proposed) {
    const QPointF origin = constrained(proposed);
    m_viewPoint = viewPointOf(origin, documentSize(), openingSize());
    return origin;
}

void ClipView::scrollTo(const QPointF& proposed) {
    scrollToPoint(constrainScrollPoint(proposed));
    reflectScrolledClipView();
}

void ClipView::scrollToPoint(const QPointF& origin) {
    if (QWidget* document = documentView()) {
        const double top = openingSize().height() - documentSize().height() + origin.y();
        document->move(wholeOrNone(-origin.x()), wholeOrNone(top));
    }
}

void ClipView::reflectScrolledClipView() {
    const QScopedValueRollback<bool> reflecting(m_reflecting, true);
    const QWidget* document = documentView();
    const QPoint place = document != nullptr ? document->pos() : QPoint();
    QScrollBar& sideways = *horizontalScrollBar();
    sideways.setValue(isRightToLeft() ? sideways.maximum() + place.x() : -place.x());
    verticalScrollBar()->setValue(-place.y());
}

void ClipView::setRanges() {
    const QScopedValueRollback<bool> reflecting(m_reflecting, true);
    const QSize document = documentSize().toSize();
    const QSize room = roomBesideBars(document);
    horizontalScrollBar()->setRange(0, std::max(document.width() - room.width(), 0));
    verticalScrollBar()->setRange(0, std::max(document.height() - room.height(), 0));
    horizontalScrollBar()->setPageStep(room.width());
    verticalScrollBar()->setPageStep(room.height());
    setFocusPolicy(room == maximumViewportSize() ? Qt::NoFocus : Qt::StrongFocus);
}

QSize ClipView::roomBesideBars(const QSize& document) const {
    const QSize all = maximumViewportSize();
    const QSize bars = barsSize();
    bool sideways = document.width() > all.width();
    const bool vertical = document.height() > all.height() - (sideways ? bars.height() : 0);
    sideways = sideways || document.width() > all.width() - (vertical ? bars.width() : 0);
    return all - QSize(vertical ? bars.width() : 0, sideways ? bars.height() : 0);
}

QSize ClipView::barsSize() const {
    return {verticalScrollBar()->sizeHint().width(), horizontalScrollBar()->sizeHint().height()};
}

void ClipView::frameChanged() {
    if (m_reflecting) {
        return; // The room changes because a bar comes or goes, see below.
    }
    // Without moving the document, or what is in its middle would be forgotten.
    setRanges();
    scrollTo(originAfterChange());
}

bool ClipView::event(QEvent* event) {
    if (event->type() == QEvent::Resize) {
        setRanges(); // Before the base class makes room for the bars that it finds to be needed.
    }
    return QAbstractScrollArea::event(event);
}

bool ClipView::viewportEvent(QEvent* event) {
    // The base class would keep the viewport from painting itself.
    return event->type() != QEvent::Paint && QAbstractScrollArea::viewportEvent(event);
}

void ClipView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    frameChanged();
}

void ClipView::scrollContentsBy(int /*dx*/, int /*dy*/) {
    if (m_reflecting) {
        return;
    }
    const QScrollBar& sideways = *horizontalScrollBar();
    const double x = isRightToLeft() ? sideways.maximum() - sideways.value() : sideways.value();
    scrollTo({x, documentSize().height() - openingSize().height() - verticalScrollBar()->value()});
}

bool ClipView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_document && event->type() == QEvent::Resize && documentView() != nullptr) {
        frameChanged();
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

} // namespace starbloom
