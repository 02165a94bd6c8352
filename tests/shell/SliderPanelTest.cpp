// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SliderPanel.h"

#include "views/ParameterSlider.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace starbloom {

namespace {

template <typename Widget>
Widget* child(const QWidget& panel, Parameter parameter, const char* suffix = "") {
    return panel.findChild<Widget*>(QString::fromUtf8(row(parameter).name.data()) + QString::fromUtf8(suffix));
}

QLabel* nameLabel(const QWidget& panel, Parameter parameter) {
    const auto labels = panel.findChildren<QLabel*>();
    const auto* slider = child<ParameterSlider>(panel, parameter);
    const auto found =
        std::find_if(labels.begin(), labels.end(), [&](auto* label) { return label->buddy() == slider; });
    return found == labels.end() ? nullptr : *found;
}

TEST(SliderPanel, EachParameterHasASliderOfItsNameThatShowsItsValue) {
    SliderPanel panel;
    panel.fill();
    const QSignalSpy moved(&panel, &SliderPanel::moved);
    for (const ParameterRow& each : parameterTable) {
        const auto* slider = child<ParameterSlider>(panel, each.parameter);
        const auto* value = child<QLabel>(panel, each.parameter, "Value");
        ASSERT_TRUE(slider != nullptr && value != nullptr) << each.name;
        EXPECT_EQ(panel.position(each.parameter), static_cast<float>(each.resetPosition)) << each.name;
        EXPECT_EQ(value->text(), ParameterSlider::text(each, static_cast<float>(each.resetPosition))) << each.name;
        panel.setPosition(each.parameter, 7.3333F);
        EXPECT_EQ(panel.position(each.parameter), 7.3333F) << each.name;
        EXPECT_EQ(value->text(), ParameterSlider::text(each, 7.3333F)) << each.name;
    }
    EXPECT_EQ(moved.count(), 0);
}

TEST(SliderPanel, ReportsMovesAndADoubleClickOnAName) {
    SliderPanel panel;
    panel.fill();
    auto* slider = child<ParameterSlider>(panel, Parameter::ExplodeVelocity);
    auto* name = nameLabel(panel, Parameter::ExplodeVelocity);
    ASSERT_NE(name, nullptr);
    QSignalSpy moved(&panel, &SliderPanel::moved);
    QTest::keyClick(slider, Qt::Key_End);
    EXPECT_EQ(moved.count(), 1);
    EXPECT_EQ(panel.position(Parameter::ExplodeVelocity), 300.0F);
    QTest::mouseDClick(name, Qt::LeftButton);
    EXPECT_EQ(moved.count(), 2);
    EXPECT_EQ(panel.position(Parameter::ExplodeVelocity), 130.0F);
}

TEST(SliderPanel, TheResetButtonAsksAndLeavesTheSlidersAlone) {
    SliderPanel panel;
    panel.fill();
    panel.setPosition(Parameter::RocketBirth, 33.0F);
    auto* button = panel.findChild<QPushButton*>(QStringLiteral("resetButton"));
    QSignalSpy requested(&panel, &SliderPanel::resetRequested);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(requested.count(), 1);
    EXPECT_EQ(panel.position(Parameter::RocketBirth), 33.0F);
    panel.setResetEnabled(false);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(requested.count(), 1);
}

TEST(SliderPanel, ADisabledSliderCannotBeMovedOrPutBack) {
    SliderPanel panel;
    panel.fill();
    panel.setPosition(Parameter::RocketBirth, 33.0F);
    panel.setEnabled(Parameter::RocketBirth, false);
    panel.show();
    QTest::mouseDClick(child<ParameterSlider>(panel, Parameter::RocketBirth), Qt::LeftButton);
    QTest::mouseDClick(nameLabel(panel, Parameter::RocketBirth), Qt::LeftButton);
    EXPECT_EQ(panel.position(Parameter::RocketBirth), 33.0F);
    EXPECT_TRUE(child<ParameterSlider>(panel, Parameter::RocketAngle)->isEnabled());
    panel.setEnabled(Parameter::RocketBirth, true);
    QTest::mouseDClick(nameLabel(panel, Parameter::RocketBirth), Qt::LeftButton);
    EXPECT_EQ(panel.position(Parameter::RocketBirth), 5.0F);
}

TEST(SliderPanel, NothingMovesOrIsCutOffWhateverTheValues) {
    SliderPanel panel;
    panel.fill();
    panel.show();
    panel.resize(panel.sizeHint().width(), 200); // So low that it has to scroll.
    const auto geometries = [&] {
        QList<QRect> all;
        for (const ParameterRow& each : parameterTable) {
            const auto* value = child<QLabel>(panel, each.parameter, "Value");
            EXPECT_GE(value->width(), value->sizeHint().width()) << value->text().toStdString();
            all << value->geometry() << child<ParameterSlider>(panel, each.parameter)->geometry();
        }
        return all << panel.geometry();
    };
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
    const auto before = geometries();
    for (const bool high : {false, true}) {
        for (const ParameterRow& each : parameterTable) {
            panel.setPosition(each.parameter, high ? each.maximum : each.minimum);
        }
        QCoreApplication::processEvents();
        EXPECT_EQ(geometries(), before);
    }
    const auto* scroll = panel.findChild<QScrollArea*>();
    EXPECT_LE(scroll->widget()->width(), scroll->viewport()->width());
}

} // namespace

} // namespace starbloom
