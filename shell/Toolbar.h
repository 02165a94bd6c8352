// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"

#include <QObject>
#include <QVariant>

#include <array>
#include <cstddef>
#include <memory>

class QAction;
class QToolBar;
class QWidget;

namespace Ui {
class Toolbar;
}

namespace starbloom {

class ColorWell;
class PathControl;
class SegmentedControl;
class StageSizeFields;

/// The buttons among the toolbar's items, by their tags.
enum class ToolItem : std::size_t { Preferences, Savepict, Showsettings, Savemovie };

inline constexpr std::size_t toolItemCount = 4;

/// The toolbar's eight items: four buttons, and four views with a control of their own.
///
/// Lives on the GUI thread, as long as the bar, which must not be deleted before it.
class Toolbar final : public QObject {
    Q_OBJECT

public:
    /// The segments of the on/off control.
    static constexpr int onSegment = 0;
    static constexpr int offSegment = 1;

    Toolbar(QToolBar& bar, DelayedCalls& calls);
    ~Toolbar() override;

    /// Gives the buttons their first states: exporting has to wait until it is found possible.
    void makeToolBar();

    /// Replaces the state of a button: "0" disables it, "1" enables it.
    void editToolItem(ToolItem item, const QString& value);

    bool validateToolbarItem(ToolItem item) const;

    /// The button as an action; its icon, texts and state are the toolbar's.
    QAction& button(ToolItem item) const { return *m_buttons[static_cast<std::size_t>(item)]; }

    StageSizeFields& sizeFields() const { return *m_sizeFields; }

    ColorWell& colorWell() const;
    SegmentedControl& onoffControl() const;
    PathControl& pathControl() const;

private:
    void addButton(ToolItem item);
    void addSpace();
    void validate();

    QToolBar& m_bar;
    std::unique_ptr<Ui::Toolbar> m_views;
    std::array<QAction*, toolItemCount> m_buttons{};
    std::array<QVariant, toolItemCount> m_toolbarItemState; ///< Each a number or a text: 0 is disabled, 1 enabled.
    StageSizeFields* m_sizeFields;
};

} // namespace starbloom
