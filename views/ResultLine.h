// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <vector>

namespace starbloom {

class LinkButton;

/// One line that tells how the last command went, with links to what it made.
///
/// Texts are shown letter by letter, whatever they contain. What does not fit is left out at the end, and the tool tip
/// shows all. Each new message is announced to assistive programs. Used on the GUI thread.
class ResultLine : public QWidget {
    Q_OBJECT

public:
    explicit ResultLine(QWidget* parent = nullptr);

    /// What a link says, and what it does.
    struct LinkTo {
        QString text;
        std::function<void()> follow;
    };

    void showResult(const QString& text, std::vector<LinkTo> links = {});
    void showError(const QString& text);
    void clear();

    /// The message, never shortened; empty when there is none.
    QString text() const { return m_text; }

private:
    class Message;

    void setMessage(const QString& text, bool error, std::vector<LinkTo> links);

    QString m_text;
    QWidget* m_errorSymbol;
    Message* m_message;
    std::vector<LinkButton*> m_links; ///< Of the present message.
};

} // namespace starbloom
