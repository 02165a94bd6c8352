// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ResultLine.h"

#include "views/ControlLook.h"
#include "views/LinkButton.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>

#include <utility>

namespace starbloom {

namespace {

constexpr int lineHeight = 22;
constexpr int symbolSize = 14;

/// A disc with an exclamation mark.
class ErrorSymbol : public QWidget {
public:
    explicit ErrorSymbol(QWidget* parent)
        : QWidget(parent) {
        setFixedSize(symbolSize, symbolSize);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(errorColor(palette()));
        painter.drawEllipse(rect());
        painter.setBrush(palette().color(QPalette::Active, QPalette::Window));
        painter.drawRoundedRect(QRectF(6.0, 3.0, 2.0, 5.0), 0.75, 0.75);
        painter.drawEllipse(QRectF(5.9, 9.0, 2.2, 2.2));
    }
};

} // namespace

/// A label that becomes as narrow as it must, and then shows the beginning of its text.
class ResultLine::Message : public QLabel {
public:
    explicit Message(QWidget* parent)
        : QLabel(parent) {
        setTextFormat(Qt::PlainText);
    }

    void setText(const QString& text, bool error) {
        m_error = error;
        QLabel::setText(text);
        setToolTip(plainToolTip(text));
        setAccessibleName(error ? qtTrId("resultLineError").arg(text) : text);
    }

    QSize sizeHint() const override { return {fontMetrics().horizontalAdvance(text()) + 1, fontMetrics().height()}; }

    QSize minimumSizeHint() const override { return {0, fontMetrics().height()}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
        const auto alignment = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
        painter.setPen(m_error ? errorColor(palette()) : palette().color(QPalette::Active, QPalette::WindowText));
        painter.drawText(rect(), static_cast<int>(alignment) | Qt::TextSingleLine, shown);
    }

private:
    bool m_error = false;
};

ResultLine::ResultLine(QWidget* parent)
    : QWidget(parent)
    , m_errorSymbol(new ErrorSymbol(this))
    , m_message(new Message(this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMinimumHeight(lineHeight);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(usualSpacing, 0, usualSpacing, 0);
    row->setSpacing(smallSpacing);
    row->addWidget(m_errorSymbol);
    row->addWidget(m_message);
    row->addStretch(1);
    m_errorSymbol->hide();
}

void ResultLine::showResult(const QString& text, std::vector<LinkTo> links) {
    setMessage(text, false, std::move(links));
}

void ResultLine::showError(const QString& text) {
    setMessage(text, true, {});
}

void ResultLine::clear() {
    setMessage({}, false, {});
}

void ResultLine::setMessage(const QString& text, bool error, std::vector<LinkTo> links) {
    m_text = text;
    m_errorSymbol->setVisible(error);
    m_message->setText(text, error);
    for (LinkButton* old : std::exchange(m_links, {})) {
        old->hide();
        old->deleteLater(); // One of them may be what is being clicked.
    }
    auto* row = static_cast<QHBoxLayout*>(layout());
    for (LinkTo& each : links) {
        auto* link = new LinkButton(this);
        link->setPlainText(each.text);
        connect(link, &LinkButton::clicked, this, [follow = std::move(each.follow)] { follow(); });
        row->insertWidget(row->count() - 1, link); // Before the stretch.
        link->show();
        m_links.push_back(link);
    }
    if (!text.isEmpty()) {
        QAccessibleEvent event(m_message, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace starbloom
