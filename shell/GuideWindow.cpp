// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/GuideWindow.h"

#include "shell/ParameterTexts.h"
#include "shell/guide/GuideEntry.h"
#include "views/PanelBox.h"
#include "views/Texts.h"

#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

#include <string_view>
#include <utility>

namespace starbloom {

namespace {

constexpr CompanionKind guideKind{
    .objectName = "guideWindow",
    .titleKey = "emitterWindowTitle",
    .frameIndex = 2,
    .remembered = &WindowFrameMemory::guide,
    .isOpen = &WindowFrameMemory::isGuideOpen,
    .openingFrame = &WindowFrameMemory::guideFrame,
};

// Points.
constexpr int pageMargin = 12;
constexpr int groupGap = 12;
constexpr int groupMargin = 5;
constexpr int entryGap = 16;

/// One entry at least is to be seen whole.
constexpr int leastHeight = 240;

/// Longer lines of text are hard to read, and larger pictures show nothing more.
constexpr int largestPage = 720;

} // namespace

GuideWindow::GuideWindow(std::shared_ptr<const SparkImage> image, QWidget& mainWindow, Stores& stores,
                         WindowFrameMemory& memory, DelayedCalls& calls)
    : CompanionWindow(guideKind, mainWindow, stores, memory, calls)
    , m_pictures(std::move(image))
    , m_scroll(new QScrollArea) {
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setAlignment(Qt::AlignHCenter);
    m_scroll->setWidgetResizable(true);
    m_scroll->setMinimumHeight(leastHeight);
    m_scroll->setWidget(makePage());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_scroll);
    setFocusProxy(m_scroll); // The arrow keys scroll from the start.
}

QWidget* GuideWindow::makePage() {
    auto* page = new QWidget;
    page->setMaximumWidth(largestPage);
    auto* groups = new QVBoxLayout(page);
    groups->setContentsMargins(pageMargin, pageMargin, pageMargin, pageMargin);
    groups->setSpacing(groupGap);
    auto* intro = new QLabel(qtTrId("guideIntro"));
    intro->setWordWrap(true);
    groups->addWidget(intro);

    QVBoxLayout* entries = nullptr;
    std::string_view group;
    for (const ParameterRow& row : parameterTable) {
        if (groupOf(row.parameter) != group) {
            group = groupOf(row.parameter);
            auto* box = new PanelBox;
            box->setTitle(textOf(group));
            entries = new QVBoxLayout(box);
            entries->setContentsMargins(groupMargin, 2 * groupMargin, groupMargin, 2 * groupMargin);
            entries->setSpacing(entryGap);
            groups->addWidget(box);
        }
        auto* entry = new GuideEntry(row, m_pictures);
        connect(entry, &GuideEntry::sliderChosen, this, &GuideWindow::sliderChosen);
        entries->addWidget(entry);
    }
    groups->addStretch(1);
    return page;
}

void GuideWindow::fitWidth() {
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, m_scroll);
    m_scroll->setMinimumWidth(m_scroll->widget()->minimumSizeHint().width() + bar);
}

void GuideWindow::showEvent(QShowEvent* event) {
    CompanionWindow::showEvent(event);
    fitWidth();
}

bool GuideWindow::isClosingKey(const QKeyEvent& key) const {
    return key.matches(QKeySequence::Cancel) || CompanionWindow::isClosingKey(key);
}

void GuideWindow::keyPressEvent(QKeyEvent* event) {
    // The scroll area itself knows the other keys.
    QScrollBar& bar = *m_scroll->verticalScrollBar();
    if (event->key() == Qt::Key_Home) {
        bar.setValue(bar.minimum());
    } else if (event->key() == Qt::Key_End) {
        bar.setValue(bar.maximum());
    } else {
        CompanionWindow::keyPressEvent(event);
    }
}

} // namespace starbloom
