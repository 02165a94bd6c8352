// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Toolbar.h"

#include "shell/StageSizeFields.h"
#include "ui_Toolbar.h"
#include "views/IconButton.h"
#include "views/SymbolIcon.h"
#include "views/Texts.h"

#include <QAction>
#include <QToolBar>

namespace starbloom {

namespace {

struct ButtonRow {
    ToolItem item;
    const char* name;
    const char* symbol;
    const char* label;   ///< Key.
    const char* toolTip; ///< Key.
};

constexpr std::array<ButtonRow, toolItemCount> buttonTable{{
    {ToolItem::Preferences, "preferencesToolbar", "preferences", "controlToolbarPreferences",
     "toolbarPreferencesToolTip"},
    {ToolItem::Savepict, "savepictToolbar", "savepict", "toolbarSavepict", "toolbarSavepictToolTip"},
    {ToolItem::Showsettings, "showsettingsToolbar", "showsettings", "toolbarShowsettings",
     "toolbarShowsettingsToolTip"},
    {ToolItem::Savemovie, "savemovieToolbar", "savemovie", "toolbarSavemovie", "toolbarSavemovieToolTip"},
}};

} // namespace

Toolbar::Toolbar(QToolBar& bar, DelayedCalls& calls)
    : QObject(&bar)
    , m_bar(bar)
    , m_views(std::make_unique<Ui::Toolbar>()) {
    QWidget cradle;
    m_views->setupUi(&cradle);
    m_sizeFields = new StageSizeFields(*m_views->widthFieldT1, *m_views->heightFieldT1, calls);
    m_sizeFields->setParent(this);
    m_views->onoffControlT1->addSegment(symbolIcon(u"play"), qtTrId("toolbarOn"));
    m_views->onoffControlT1->addSegment(symbolIcon(u"pause"), qtTrId("toolbarOff"));

    // The show, from left to right, then what becomes of it, then the windows around it.
    m_bar.addWidget(m_views->onoffView)->setObjectName(QStringLiteral("onoffToolbar"));
    m_bar.addWidget(m_views->sizeView)->setObjectName(QStringLiteral("setsizeToolbar"));
    m_bar.addWidget(m_views->backcolorView)->setObjectName(QStringLiteral("backcolorToolbar"));
    addSpace();
    m_bar.addWidget(m_views->folderView)->setObjectName(QStringLiteral("folderToolbar"));
    addButton(ToolItem::Savepict);
    addButton(ToolItem::Savemovie);
    addButton(ToolItem::Showsettings);
    addButton(ToolItem::Preferences);
}

Toolbar::~Toolbar() = default;

void Toolbar::addButton(ToolItem item) {
    const ButtonRow& row = buttonTable[static_cast<std::size_t>(item)];
    auto* action = new QAction(symbolIcon(QString::fromLatin1(row.symbol)), textOf(row.label), &m_bar);
    action->setObjectName(QLatin1String(row.name));
    action->setToolTip(textOf(row.toolTip));
    auto* button = new IconButton(action);
    button->setIconSize(m_bar.iconSize());
    button->setAccessibleDescription(textOf(row.toolTip));
    m_bar.addWidget(button);
    m_buttons[static_cast<std::size_t>(item)] = action;
}

void Toolbar::addSpace() {
    auto* space = new QWidget;
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    m_bar.addWidget(space);
}

void Toolbar::makeToolBar() {
    m_toolbarItemState = {1, 0, 1, 0};
    validate();
}

void Toolbar::editToolItem(ToolItem item, const QString& value) {
    m_toolbarItemState[static_cast<std::size_t>(item)] = value;
    validate();
}

bool Toolbar::validateToolbarItem(ToolItem item) const {
    return m_toolbarItemState[static_cast<std::size_t>(item)].toInt() != 0;
}

void Toolbar::validate() {
    for (const ButtonRow& row : buttonTable) {
        button(row.item).setEnabled(validateToolbarItem(row.item));
    }
    const bool canExport = validateToolbarItem(ToolItem::Savepict);
    button(ToolItem::Savepict)
        .setToolTip(canExport ? qtTrId("toolbarSavepictToolTip") : qtTrId("toolbarExportDisabled"));
    button(ToolItem::Savemovie)
        .setToolTip(canExport ? qtTrId("toolbarSavemovieToolTip") : qtTrId("toolbarExportDisabled"));
}

ColorWell& Toolbar::colorWell() const {
    return *m_views->colorWellT1;
}

SegmentedControl& Toolbar::onoffControl() const {
    return *m_views->onoffControlT1;
}

PathControl& Toolbar::pathControl() const {
    return *m_views->pathControlT1;
}

} // namespace starbloom
