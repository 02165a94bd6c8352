// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QUrl>
#include <QWidget>

namespace starbloom {

/// One line that tells how the last command went, with a link to what it made where there is one.
///
/// Texts are shown letter by letter, whatever they contain. What does not fit is left out at the end, and the tool tip
/// shows all. Each new message is announced to assistive programs. Used on the GUI thread.
class ResultLine : public QWidget {
    Q_OBJECT

public:
    explicit ResultLine(QWidget* parent = nullptr);

    void showResult(const QString& text);
    void showResult(const QString& text, const QString& linkText, const QUrl& link);
    void showError(const QString& text);
    void clear();

    /// The message, never shortened; empty when there is none.
    QString text() const { return m_text; }

signals:
    void linkActivated(const QUrl& link);

private:
    class Message;
    class Link;

    void setMessage(const QString& text, bool error, const QString& linkText, const QUrl& link);

    QString m_text;
    QUrl m_link;
    QWidget* m_errorSymbol;
    Message* m_message;
    Link* m_linkButton;
};

} // namespace starbloom
