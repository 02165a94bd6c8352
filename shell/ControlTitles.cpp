// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ControlTitles.h"

#include "views/Texts.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QTabWidget>

namespace starbloom {

namespace {

constexpr ControlTitle titles[] = {
    {"exportWindow", "controlExport3Window"},
    {"box3", "controlExport3Box3"},
    {"label3a", "controlExport3Label3a"},
    {"label3b", "controlExport3Label3b"},
    {"label3c", "controlExport3Label3c"},
    {"saveButton3", "controlExport3SaveButton"},
    {"cancelButton3", "controlExport3CancelButton"},
    {"makemovieWindow", "controlMakemovie4Window"},
    {"box4", "controlMakemovie4Box4"},
    {"label4a", "controlMakemovie4Label4a"},
    {"label4b", "controlMakemovie4Label4b"},
    {"fadeinButton4", "controlMakemovie4Fadein"},
    {"loadButton4", "controlMakemovie4Load"},
    {"saveButton4", "controlMakemovie4Save"},
    {"createButton4", "controlMakemovie4Create"},
    {"closeButton4", "controlMakemovie4Cancel"},
    {"label5", "controlMakemovie5Label5"},
    {"abortButton5", "controlMakemovie5Abortbutton5"},
    {"introductionWindow", "controlIntroductionWindow"},
    {"noshowButton7", "controlIntroductionDont"},
    {"preferencesWindow", "controlPreferencesWindow"},
    {"closeButton1p", "controlPreferencesClose1"},
    {"saveButton1p", "controlPreferencesSave1"},
    {"somechangesLabel1", "controlPreferencesSomeLabel"},
    {"generalCheckbox01p", "controlPreferencesGeneral1"},
    {"generalCheckbox02p", "controlPreferencesGeneral2"},
    {"generalCheckbox03p", "controlPreferencesGeneral3"},
    {"generalCheckbox04p", "controlPreferencesGeneral4"},
    {"generalCheckbox05p", "controlPreferencesGeneral5"},
    {"generalCheckbox06p", "controlPreferencesGeneral6"},
    {"generalCheckbox07p", "controlPreferencesGeneral7"},
    {"generalCheckbox08p", "controlPreferencesGeneral8"},
    {"generalCheckbox09p", "controlPreferencesGeneral9"},
    {"generalCheckbox10p", "controlPreferencesGeneral10"},
    {"generalCheckbox11p", "controlPreferencesGeneral11"},
    {"generalCheckbox12p", "controlPreferencesGeneral12"},
    {"tabView1p", "controlPreferencesTabName0", 0},
    {"tabView1p", "controlPreferencesTabName1", 1},
    {"openBox1p", "controlPreferencesOpenfolderTitle"},
    {"boxLabel1p", "controlPreferencesOpenfolderLabel"},
    {"defaultButton1p", "controlPreferencesOpenfolderDefault"},
    {"exportBox1p", "controlPreferencesExportfolderTitle"},
    {"boxLabel2p", "controlPreferencesExportfolderLabel"},
    {"defaultButton2p", "controlPreferencesExportfolderDefault"},
    {"exportingBox1p", "controlPreferencesExportingBox"},
    {"exportingLabel1p", "controlPreferencesExportingLabel1"},
    {"exportingLabel2p", "controlPreferencesExportingLabel2"},
    {"preferencesToolbar", "controlToolbarPreferences"},
};

QObject* find(QWidget& window, std::string_view name) {
    const QString objectName = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    return window.objectName() == objectName ? &window : window.findChild<QObject*>(objectName);
}

void setTitle(QObject& control, const QString& title, int page) {
    if (auto* tabs = qobject_cast<QTabWidget*>(&control)) {
        tabs->setTabText(page, title);
    } else if (auto* box = qobject_cast<QGroupBox*>(&control)) {
        box->setTitle(title);
    } else if (auto* button = qobject_cast<QAbstractButton*>(&control)) {
        button->setText(title);
    } else if (auto* label = qobject_cast<QLabel*>(&control)) {
        label->setText(title);
    } else if (auto* command = qobject_cast<QAction*>(&control)) {
        command->setText(title);
    } else if (auto* widget = qobject_cast<QWidget*>(&control); widget != nullptr && widget->isWindow()) {
        widget->setWindowTitle(title);
    } else {
        Q_ASSERT_X(false, "setControlTitles", "an object of this name has no title");
    }
}

} // namespace

std::span<const ControlTitle> controlTitles() {
    return titles;
}

void setControlTitles(QWidget& window) {
    for (const ControlTitle& each : titles) {
        if (QObject* control = find(window, each.control)) {
            setTitle(*control, textOf(each.key), each.page);
        }
    }
}

} // namespace starbloom
