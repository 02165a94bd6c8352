// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/backgrounds/BackgroundViews.h"

namespace starbloom {

namespace {

constexpr double own = Gradation::own;
constexpr double topToBottom = 270.0;
constexpr double leftToRight = 0.0;

constexpr ColorStop stops1[] = {
    {"195", "148", "56", "100", "0.000000"},
    {"194", "92", "5", "100", "0.520000"},
    {"123", "21", "4", "100", "1.000000"},
};
constexpr Gradation gradation1{own, own, 60.0, stops1};

constexpr ColorStop stops10[] = {
    {"47", "47", "47", "100", "0.000000"}, {"33", "33", "33", "100", "0.100000"}, {"0", "0", "0", "100", "0.500034"},
    {"33", "33", "33", "100", "0.900000"}, {"47", "47", "47", "100", "1.000000"},
};
constexpr Gradation gradation10{own, own, topToBottom, stops10};

constexpr ColorStop stops11[] = {
    {"255", "173", "0", "100", "0.000000"},
    {"255", "255", "0", "100", "1.000000"},
};
constexpr Gradation gradation11{230.0, own, leftToRight, stops11};

constexpr ColorStop stops12[] = {
    {"127", "127", "127", "100", "0.000000"},
    {"0", "0", "0", "100", "0.75"},
    {"25", "25", "25", "100", "1.000000"},
};
constexpr Gradation gradation12{6400.0, own, topToBottom, stops12};

constexpr ColorStop stops13[] = {
    {"181", "254", "1", "100", "0.0f"},
    {"105", "144", "1", "100", "1.000000"},
};
constexpr Gradation gradation13{own, own, topToBottom, stops13};

constexpr ColorStop stops14[] = {
    {"218", "236", "252", "100", "0.000000"},
    {"210", "234", "252", "100", "0.500405"},
    {"207", "233", "252", "100", "1.000000"},
};
constexpr Gradation gradation14{356.0, 6500.0, topToBottom, stops14};

/// Two thirds of white: the light grey of desktops, not the lighter one of palettes.
constexpr QColor lightGray(170, 170, 170);

} // namespace

BackgroundView1::BackgroundView1(QWidget* parent)
    : GradientView(gradation1, parent) {}

BackgroundView10::BackgroundView10(QWidget* parent)
    : GradientView(gradation10, parent) {}

BackgroundView11::BackgroundView11(QWidget* parent)
    : GradientView(gradation11, parent) {}

BackgroundView12::BackgroundView12(QWidget* parent)
    : GradientView(gradation12, parent) {}

BackgroundView13::BackgroundView13(QWidget* parent)
    : GradientView(gradation13, parent) {}

BackgroundView14::BackgroundView14(QWidget* parent)
    : GradientView(gradation14, parent) {}

BackgroundView0::BackgroundView0(QWidget* parent)
    : FlatView(lightGray, parent) {}

BackgroundView2::BackgroundView2(QWidget* parent)
    : FlatView(QColor(167, 181, 195), parent) {}

BackgroundView3::BackgroundView3(QWidget* parent)
    : FlatView(panelColor, parent) {}

BackgroundView4::BackgroundView4(QWidget* parent)
    : FlatView(QColor(66, 65, 6), parent) {}

BackgroundView5::BackgroundView5(QWidget* parent)
    : FlatView(QColor(70, 70, 70), parent) {}

BackView1::BackView1(QWidget* parent)
    : BackView(parent) {}

BackView2::BackView2(QWidget* parent)
    : BackView(parent) {}

BackView3::BackView3(QWidget* parent)
    : BackView(parent) {}

} // namespace starbloom
