// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

/// Which of the introduction's thirteen pages is shown, and what comes with it: the colour of its badge, and whether
/// the two buttons can be used. A step leads one page on or back; the ends are left only inwards.
///
/// The badge is red on the first and on the last page, and black on the others; but the first page's is black until one
/// has come back to it. A value, no Qt, any thread.
class IntroductionPages {
public:
    static constexpr int count = 13;

    int page() const { return m_page; }

    bool isBadgeRed() const { return m_badgeRed; }

    bool canGoBack() const { return m_canGoBack; }

    bool canGoForward() const { return m_canGoForward; }

    // One page; false, and nothing changes, where there is none.
    bool forward();
    bool back();

private:
    int m_page = 1;
    bool m_badgeRed = false;
    bool m_canGoBack = false;
    bool m_canGoForward = true;
};

} // namespace starbloom
