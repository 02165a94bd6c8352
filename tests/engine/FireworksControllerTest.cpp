// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/panel/FireworksController.h"

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace starbloom {

namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

/// Positions as numbers; notes in which order controls are switched.
class RecordingPanel final : public ParameterPanel {
public:
    float position(Parameter parameter) const override { return m_numbers.position(parameter); }

    void setPosition(Parameter parameter, float position) override { m_numbers.setPosition(parameter, position); }

    void setEnabled(Parameter parameter, bool enabled) override {
        switched.emplace_back(row(parameter).outlet, enabled);
    }

    void setResetEnabled(bool enabled) override { switched.emplace_back("resetButton", enabled); }

    std::vector<std::pair<std::string, bool>> switched;

private:
    PositionPanel m_numbers;
};

class SizedStage final : public Stage {
public:
    Size size() const override { return stageSize; }

    void setRootLayer(std::shared_ptr<const RootLayer> layer) override { rootLayer = std::move(layer); }

    void layerChanged() override { ++changes; }

    Size stageSize{640.0, 480.0};
    std::shared_ptr<const RootLayer> rootLayer;
    int changes = 0;
};

/// Every number of the tree, with the path it lies at.
std::map<std::string, double> numbersOf(const EmitterLayer& layer) {
    std::map<std::string, double> numbers{
        {"x", layer.emitterPosition.x}, {"y", layer.emitterPosition.y}, {"speed", layer.speed}};
    const std::function<void(const EmitterCell&, const std::string&)> add = [&](const EmitterCell& cell,
                                                                                const std::string& path) {
        for (const char* name :
             {"birthRate",        "lifetime",      "velocity",  "velocityRange", "yAcceleration", "emissionLongitude",
              "emissionLatitude", "emissionRange", "scale",     "scaleRange",    "scaleSpeed",    "spin",
              "redRange",         "greenRange",    "blueRange", "redSpeed",      "greenSpeed",    "blueSpeed",
              "alphaSpeed",       "beginTime",     "duration"}) {
            numbers[path + name] = cell.value(name).value();
        }
        for (const auto& [name, value] : cell.extraAttributes) {
            numbers[path + name] = value;
        }
        for (std::size_t i = 0; i < cell.emitterCells.size(); ++i) {
            add(*cell.emitterCells[i], path + std::to_string(i) + ".");
        }
    };
    add(*layer.emitterCells.at(0), "rocket.");
    return numbers;
}

class FireworksControllerTest : public testing::Test {
protected:
    std::map<std::string, double> numbers() const { return numbersOf(controller.mortor()); }

    double value(const char* path) const { return controller.mortor().value(path).value(); }

    void moveAll(float position) {
        for (const auto& each : parameterTable) {
            panel.setPosition(each.parameter, position);
        }
    }

    RecordingPanel panel;
    SizedStage stage;
    FireworksController controller{&panel, &stage, nullptr};
};

TEST_F(FireworksControllerTest, handsTheBuiltTreeToTheStage) {
    ASSERT_NE(stage.rootLayer, nullptr);
    EXPECT_EQ(stage.rootLayer->bounds, (Size{640.0, 480.0}));
    EXPECT_EQ(stage.rootLayer->backgroundColor, (Color{0.0F, 0.0F, 0.0F, 1.0F}));
    ASSERT_EQ(stage.rootLayer->sublayers.size(), 1U);
    EXPECT_EQ(stage.rootLayer->sublayers[0].get(), &controller.mortor());
    EXPECT_EQ(controller.mortor().emitterPosition, (Point{320.0, 0.0}));
    EXPECT_EQ(controller.mortor().renderMode, RenderMode::Additive);
    EXPECT_EQ(controller.mortor().speed, 1.0F);
    EXPECT_EQ(value("emitterCells.rocket.velocityRange"), 0.0);
}

TEST_F(FireworksControllerTest, resetGivesTheBuiltTreeButForTwoNumbers) {
    const auto built = numbers();
    moveAll(3.0F);
    controller.slidersMoved();
    controller.resetSliders();
    std::map<std::string, double> changed;
    for (const auto& [path, number] : numbers()) {
        // A slider's number is single precision, also where the tree was built with a double.
        const auto before = built.find(path);
        if (before == built.end() || static_cast<float>(before->second) != static_cast<float>(number)) {
            changed[path] = number;
        }
    }
    EXPECT_THAT(changed, UnorderedElementsAre(Pair("rocket.velocityRange", 100.0), Pair("rocket.2.birth", 100.0)));
    EXPECT_GT(stage.changes, 0);
}

TEST_F(FireworksControllerTest, formulasRoundOnceToSinglePrecision) {
    // Worked out with exact double arithmetic elsewhere. Each product with a fraction ends, at one position or the
    // other, on another last bit when it is taken in single precision.
    const struct {
        const char* path;
        double at3p3, at123p4;
    } cases[] = {
        {"emitterCells.rocket.birthRate", 0x1.51eb84p-2, 0x1.8ae148p+3},
        {"emitterCells.rocket.emissionRange", 0x1.4bc08ep+1, 0x1.83ac2cp+6},
        {"emitterCells.rocket.velocity", 0x1.a66666p+1, 0x1.ed999ap+6},
        {"emitterCells.rocket.velocityRange", 0x1.a66666p+1, 0x1.ed999ap+6},
        {"emitterCells.rocket.yAcceleration", -0x1.a66666p+1, -0x1.ed999ap+6},
        {"emitterCells.rocket.emitterCells.firework.lifetime", 0x1.51eb84p-2, 0x1.8ae148p+3},
        {"emitterCells.rocket.emitterCells.firework.velocity", 0x1.a66666p+1, 0x1.ed999ap+6},
        {"emitterCells.rocket.emitterCells.firework.velocityRange", 0x1.a66666p+1, 0x1.ed999ap+6},
        {"emitterCells.rocket.emitterCells.firework.yAcceleration", -0x1.a66666p+1, -0x1.ed999ap+6},
        {"emitterCells.rocket.emitterCells.preSpark.birth", 33.0, 1234.0},
        {"emitterCells.rocket.emitterCells.preSpark.birthRate", 100.0, 100.0},
        {"emitterCells.rocket.emitterCells.preSpark.lifetime", 0x1.51eb84p-2, 0x1.8ae148p+3},
        {"emitterCells.rocket.emitterCells.preSpark.scale", 0x1.51eb84p-2, 0x1.8ae148p+3},
        {"emitterCells.rocket.emitterCells.preSpark.velocity", 0x1.27ae14p+1, 0x1.598520p+6},
        {"emitterCells.rocket.emitterCells.preSpark.yAcceleration", -0x1.670a3ep+1, -0x1.a38f5cp+6},
    };

    stage.stageSize = {333.0, 700.5};
    for (const bool first : {true, false}) {
        moveAll(first ? 3.3F : 123.4F);
        controller.slidersMoved();
        for (const auto& each : cases) {
            EXPECT_EQ(value(each.path), first ? each.at3p3 : each.at123p4) << each.path;
        }
        EXPECT_EQ(controller.mortor().speed, first ? 0x1.0e5604p-5F : 0x1.3be76cp+0F);
        EXPECT_EQ(controller.mortor().emitterPosition,
                  (Point{166.5, first ? -0x1.dc570b1d99998p+6 : 0x1.032f5c6100000p+13}));
    }
}

TEST_F(FireworksControllerTest, launchPointFollowsTheStageOnlyWhenSlidersMove) {
    panel.setPosition(Parameter::RocketHeight, 0.0F);
    controller.slidersMoved();
    EXPECT_EQ(controller.mortor().emitterPosition, (Point{320.0, -240.0}));
    stage.stageSize = {1000.0, 800.0};
    controller.setAnimation(false);
    controller.setAnimation(true);
    controller.setLaunchBirth(3.0);
    EXPECT_EQ(controller.mortor().emitterPosition, (Point{320.0, -240.0}));
    panel.setPosition(Parameter::RocketHeight, 10.0F);
    controller.slidersMoved();
    EXPECT_EQ(controller.mortor().emitterPosition, (Point{500.0, 400.0}));
}

TEST_F(FireworksControllerTest, switchedOffIgnoresSlidersAndBackOnSetsTheSpeedAlone) {
    controller.slidersMoved();
    auto expected = numbers();
    controller.setAnimation(false);
    EXPECT_TRUE(controller.off());
    moveAll(44.0F);
    stage.stageSize = {10.0, 10.0};
    controller.slidersMoved();
    controller.resetSliders();
    EXPECT_EQ(panel.position(Parameter::RocketVelocity), 44.0F);
    expected["speed"] = 0.0;
    EXPECT_EQ(numbers(), expected);
    controller.setAnimation(true);
    EXPECT_FALSE(controller.off());
    expected["speed"] = static_cast<double>(0.44F);
    EXPECT_EQ(numbers(), expected);
}

TEST_F(FireworksControllerTest, speedZeroFreezesWithoutSwitchingOff) {
    panel.setPosition(Parameter::AnimateSpeed, 0.0F);
    controller.slidersMoved();
    EXPECT_EQ(controller.mortor().speed, 0.0F);
    EXPECT_FALSE(controller.off());
    panel.setPosition(Parameter::AnimateSpeed, 200.0F);
    controller.slidersMoved();
    EXPECT_EQ(controller.mortor().speed, 2.0F);
}

TEST_F(FireworksControllerTest, launchBirthBackgroundAndControlsWorkInBothStates) {
    auto expected = numbers();
    for (const bool on : {false, true}) {
        controller.setAnimation(on);
        controller.setLaunchBirth(on ? 0.333333 : 7.0);
        expected["speed"] = on ? 1.0 : 0.0;
        expected["rocket.birthRate"] = on ? static_cast<double>(0.0333333F) : static_cast<double>(0.7F);
        EXPECT_EQ(numbers(), expected);
        EXPECT_EQ(panel.position(Parameter::RocketBirth), 5.0F);
        const Color color{on ? 0.25F : 0.5F, 0.125F, 1.0F, 0.5F};
        controller.setBackgroundColor(color);
        EXPECT_EQ(stage.rootLayer->backgroundColor, color);
        panel.switched.clear();
        controller.setControls(on);
        EXPECT_THAT(panel.switched,
                    ElementsAre(Pair("yPosition", on), Pair("rocketBirth", on), Pair("rocketRange", on),
                                Pair("rocketVelocity", on), Pair("rocketVelocityRange", on), Pair("rocketGravity", on),
                                Pair("fireworkLifetime", on), Pair("fireworkVelocity", on),
                                Pair("fireworkVelocityRange", on), Pair("fireworkGravity", on),
                                Pair("sparkleBirth", on), Pair("sparkleLifetime", on), Pair("sparkleScale", on),
                                Pair("animationSpeed", on), Pair("resetButton", on)));
    }
}

TEST(FireworksController, missingStageReadsAsOneWithoutSize) {
    PositionPanel panel;
    FireworksController controller(&panel, nullptr, nullptr);
    panel.setPosition(Parameter::RocketHeight, 8.0F);
    controller.slidersMoved();
    EXPECT_EQ(controller.mortor().emitterPosition, (Point{0.0, 0.0}));
}

TEST(FireworksController, missingPanelLeavesTheTreeAsBuilt) {
    FireworksController controller(nullptr, nullptr, nullptr);
    const auto built = numbersOf(controller.mortor());
    controller.slidersMoved();
    controller.resetSliders();
    controller.setControls(false);
    EXPECT_EQ(numbersOf(controller.mortor()), built);
}

TEST(ParameterTable, rowsAreWhatPresetsAndPanelsRelyOn) {
    const int resets[] = {5, 5, 1, 400, 100, 250, 20, 130, 0, 80, 10, 18, 6, 100};
    std::set<std::string_view> names;
    std::set<std::string_view> outlets;
    for (std::size_t i = 0; i < parameterCount; ++i) {
        const ParameterRow& each = parameterTable[i];
        EXPECT_EQ(static_cast<std::size_t>(each.parameter), i);
        EXPECT_EQ(each.resetPosition, resets[i]) << each.name;
        EXPECT_LE(each.minimum, static_cast<float>(each.resetPosition)) << each.name;
        EXPECT_GE(each.maximum, static_cast<float>(each.resetPosition)) << each.name;
        EXPECT_LT(each.minimum, each.maximum) << each.name;
        EXPECT_EQ(findParameter(each.name), &each);
        names.insert(each.name);
        outlets.insert(each.outlet);
    }
    EXPECT_EQ(names.size(), parameterCount);
    EXPECT_EQ(outlets.size(), parameterCount);
    EXPECT_EQ(findParameter("rocketbirthslider"), nullptr);
    EXPECT_EQ(findParameter(""), nullptr);
}

} // namespace

} // namespace starbloom
