// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/ParameterSlider.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <limits>

namespace starbloom {

namespace {

TEST(ParameterSlider, KeepsThePositionItWasGivenAndSaysNothing) {
    for (const ParameterRow& row : parameterTable) {
        ParameterSlider slider(row);
        const QSignalSpy moved(&slider, &ParameterSlider::moved);
        EXPECT_EQ(slider.position(), static_cast<float>(row.resetPosition)) << row.name;
        for (const float position : {row.minimum, row.maximum, 3.1415927F, 5.0049F, -7.25F, 1.0e6F,
                                     std::numeric_limits<float>::denorm_min()}) {
            slider.setPosition(position);
            EXPECT_EQ(slider.position(), position) << row.name;
        }
        EXPECT_EQ(moved.count(), 0) << row.name;
    }
}

TEST(ParameterSlider, KeysReachBothEndsExactlyAndRoundNumbersBetween) {
    for (const ParameterRow& row : parameterTable) {
        ParameterSlider slider(row);
        const QSignalSpy moved(&slider, &ParameterSlider::moved);
        QTest::keyClick(&slider, Qt::Key_Right);
        EXPECT_GT(slider.position(), static_cast<float>(row.resetPosition)) << row.name;
        QTest::keyClick(&slider, Qt::Key_End);
        EXPECT_EQ(slider.position(), row.maximum) << row.name;
        QTest::keyClick(&slider, Qt::Key_Home);
        EXPECT_EQ(slider.position(), row.minimum) << row.name;
        EXPECT_EQ(moved.count(), 3) << row.name;
    }
    ParameterSlider rate(row(Parameter::RocketBirth));
    QTest::keyClick(&rate, Qt::Key_Right);
    EXPECT_EQ(rate.position(), 6.0F);
    QTest::keyClick(&rate, Qt::Key_PageUp);
    EXPECT_EQ(rate.position(), 11.0F);
}

TEST(ParameterSlider, MovesOnFromAPositionBetweenSteps) {
    ParameterSlider slider(row(Parameter::ExplodeLife));
    slider.setPosition(20.04F);
    QTest::keyClick(&slider, Qt::Key_Left);
    EXPECT_EQ(slider.position(), 19.0F);
    slider.setPosition(80.0F); // Beyond the end: a key towards the end changes nothing, one away from it starts there.
    QTest::keyClick(&slider, Qt::Key_Right);
    EXPECT_EQ(slider.position(), 80.0F);
    QTest::keyClick(&slider, Qt::Key_Left);
    EXPECT_EQ(slider.position(), 49.0F);
}

TEST(ParameterSlider, ADoubleClickOrDeletePutsItBack) {
    ParameterSlider slider(row(Parameter::RocketGravity));
    slider.resize(200, 24);
    for (const bool byKey : {false, true}) {
        slider.setPosition(60.0F);
        QSignalSpy moved(&slider, &ParameterSlider::moved);
        if (byKey) {
            QTest::keyClick(&slider, Qt::Key_Delete);
        } else {
            QTest::mouseDClick(&slider, Qt::LeftButton, {}, QPoint(180, 12));
        }
        EXPECT_EQ(slider.position(), 250.0F);
        EXPECT_GE(moved.count(), 1);
    }
    slider.setPosition(60.0F);
    slider.setEnabled(false);
    QTest::mouseDClick(&slider, Qt::LeftButton, {}, QPoint(180, 12));
    EXPECT_EQ(slider.position(), 60.0F);
}

TEST(ParameterSlider, SaysThePositionInItsUnit) {
    QLocale::setDefault(QLocale::c());
    const auto text = [](Parameter parameter, float position) {
        return ParameterSlider::text(row(parameter), position).replace(QChar::Nbsp, u' ').toStdString();
    };
    EXPECT_EQ(text(Parameter::RocketHeight, 5.0F), "0 %");
    EXPECT_EQ(text(Parameter::RocketHeight, 4.99F), "0 %"); // And not -0.
    EXPECT_EQ(text(Parameter::RocketHeight, 0.0F), "\u221250 %");
    EXPECT_EQ(text(Parameter::RocketBirth, 5.0F), "0.5 /s");
    EXPECT_EQ(text(Parameter::RocketAngle, 1.0F), "45°");
    EXPECT_EQ(text(Parameter::RocketVelocity, 400.0F), "400 pt/s");
    EXPECT_EQ(text(Parameter::ExplodeLife, 20.0F), "2.0 s");
    EXPECT_EQ(text(Parameter::SparkleBirth, 10.0F), "100 /s");
    EXPECT_EQ(text(Parameter::SparkleSize, 6.0F), "60 %");
}

} // namespace

} // namespace starbloom
