// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/introduction/IntroductionPages.h"

namespace starbloom {

bool IntroductionPages::forward() {
    if (m_page == count) {
        return false;
    }
    ++m_page;
    m_badgeRed = m_page == count;
    if (m_page == 2 || m_page == count - 1) {
        m_canGoBack = m_canGoForward = true;
    } else if (m_page == count) {
        m_canGoBack = true;
        m_canGoForward = false;
    }
    return true;
}

bool IntroductionPages::back() {
    if (m_page == 1) {
        return false;
    }
    --m_page;
    m_badgeRed = m_page == 1;
    if (m_page == count - 1) {
        m_canGoBack = m_canGoForward = true;
    } else if (m_page == 1) {
        m_canGoBack = false;
        m_canGoForward = true;
    }
    return true;
}

} // namespace starbloom
