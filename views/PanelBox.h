// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGroupBox>

namespace starbloom {

/// A group of controls: a bold title, and below it a panel on which the controls lie.
///
/// The panel is pale blue on light desktops and dark grey on dark ones. It is the window's colour for everything on it,
/// so that whatever computes a colour that stands out does so against the panel; text that would not is made to. What
/// is left between panel and controls is up to the layout. A box that is never shown computes no colours. GUI thread.
class PanelBox : public QGroupBox {
    Q_OBJECT

public:
    explicit PanelBox(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QFont titleFont() const;
    int titleHeight() const;
    QPalette paletteBehind() const;
    void takeColors();

    bool m_seen = false; ///< Before, no colours are computed.
};

} // namespace starbloom
