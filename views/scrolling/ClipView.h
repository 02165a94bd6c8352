// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractScrollArea>
#include <QPointF>
#include <QPointer>
#include <QSizeF>

namespace starbloom {

/// A scroll view whose document is placed by a rule of its own when it is smaller than the room for it. It has scroll
/// bars only while they are needed, and can have the focus only then: the arrow keys scroll.
///
/// Points are the document's, from its bottom left corner, y upwards, see ClipArithmetic.h; only here are they turned
/// into a widget's places. The document is a widget of any size, even none, which keeps the size that it is given. The
/// viewport is painted by its own class: setViewport() gives the document a ground. GUI thread.
class ClipView : public QAbstractScrollArea {
    Q_OBJECT

public:
    /// Shows the widget, as a child of the viewport; the view is without a document again when it gets another parent.
    void setDocumentView(QWidget* document);
    QWidget* documentView() const;

    /// The part of the document that is in the middle of the view, as a fraction of its width and height.
    QPointF viewPoint() const { return m_viewPoint; }

    /// Where the bottom left corner of what is shown lies in the document.
    QPointF boundsOrigin() const;

    /// What the scroll bars take of the view's width and height while they are needed.
    QSize barsSize() const;

    /// Shows what lies at an origin, or as near to it as the rule allows.
    void scrollTo(const QPointF& proposed);

protected:
    explicit ClipView(QWidget* parent);

    /// The rule: the origin to be used instead of the proposed one.
    virtual QPointF constrained(const QPointF& proposed) const = 0;

    /// The origin to go to when the size of the view or of the document has changed.
    virtual QPointF originAfterChange() const = 0;

    QSizeF documentSize() const;
    QSizeF openingSize() const;

    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Notes what is in the middle and returns the origin to use.
    QPointF constrainScrollPoint(const QPointF& proposed);
    void frameChanged();
    void setRanges();
    QSize roomBesideBars(const QSize& document) const;
    void scrollToPoint(const QPointF& origin);
    void reflectScrolledClipView();

    QPointer<QWidget> m_document;
    QPointF m_viewPoint;
    bool m_reflecting = false; ///< The scroll bars follow the document, not the other way round.
};

} // namespace starbloom
