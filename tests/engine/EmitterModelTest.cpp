// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/model/FireworksTree.h"

#include <gmock/gmock.h>

#include <array>
#include <numbers>
#include <string>
#include <vector>

namespace starbloom {

namespace {

using std::numbers::pi;
using testing::Optional;

/// What each cell holds after the build, in the order of fireworksCellLabels.
struct PropertyRow {
    const char* name;
    bool isSingle; ///< Single precision: what is stored is the nearest float.
    std::array<double, 5> built;
};

constexpr PropertyRow properties[] = {
    {"birthRate", true, {0.5, 45.0, 9999.0, 100.0, 10.0}},
    {"lifetime", true, {1.6, 1.5, 2.0, 1.8, 0.05}},
    {"velocity", false, {400.0, 100.0, 130.0, 91.0, 0.0}},
    {"velocityRange", false, {0.0, 0.0, 0.0, 0.0, 0.0}},
    {"yAcceleration", false, {-250.0, -350.0, -80.0, -68.0, -250.0}},
    {"emissionLongitude", false, {pi / 2.0, 2.0 * pi, 0.0, 0.0, 0.0}},
    {"emissionLatitude", false, {0.0, 0.0, 0.0, 0.0, 0.0}},
    {"emissionRange", false, {pi / 4.0, 0.4487989505128276, 2.0 * pi, 2.0 * pi, 0.0}},
    {"scale", false, {1.0, 0.4, 0.6, 0.6, 1.0}},
    {"scaleRange", false, {0.0, 0.1, 0.0, 0.0, 0.0}},
    {"scaleSpeed", false, {0.0, -0.1, -0.1, 0.0, 0.0}},
    {"spin", false, {0.0, 0.0, 2.0, 0.0, 0.0}},
    {"redRange", true, {0.5, 0.0, 0.0, 0.0, 0.0}},
    {"greenRange", true, {0.5, 0.0, 0.0, 0.0, 0.0}},
    {"blueRange", true, {0.5, 0.0, 0.0, 0.0, 0.0}},
    {"redSpeed", true, {0.0, 0.0, 0.0, 100.0, 0.0}},
    {"greenSpeed", true, {0.0, 0.0, 0.0, 100.0, 0.0}},
    {"blueSpeed", true, {0.0, 0.0, 0.0, 100.0, 0.0}},
    {"alphaSpeed", true, {0.0, -0.7, -0.2, 0.0, 0.0}},
    {"beginTime", false, {0.0, 0.01, 1.5, 1.3, 0.8}},
    {"duration", false, {0.0, 0.7, 0.1, 0.0, 0.0}},
};

class EmitterModelTest : public testing::Test {
protected:
    EmitterModelTest() { buildFireworksTree(layer, image); }

    std::vector<EmitterCell*> cells() const {
        EmitterCell* rocket = layer.emitterCells.at(0).get();
        EmitterCell* preSpark = rocket->emitterCells.at(2).get();
        return {rocket, rocket->emitterCells[0].get(), rocket->emitterCells[1].get(), preSpark,
                preSpark->emitterCells.at(0).get()};
    }

    std::shared_ptr<const SparkImage> image = std::make_shared<SparkImage>();
    EmitterLayer layer;
};

TEST_F(EmitterModelTest, builtTreeHoldsTheShow) {
    const auto all = cells();
    for (const auto& row : properties) {
        for (std::size_t i = 0; i < all.size(); ++i) {
            const double expected = row.isSingle ? static_cast<double>(static_cast<float>(row.built[i])) : row.built[i];
            const auto value = all[i]->value(row.name);
            ASSERT_TRUE(value) << row.name;
            EXPECT_DOUBLE_EQ(*value, expected) << fireworksCellLabels[i] << " " << row.name;
        }
    }
    const char* names[] = {"rocket", "", "firework", "preSpark", ""};
    const std::size_t children[] = {3, 0, 0, 1, 0};
    const bool draws[] = {false, true, true, false, true};
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i]->name, names[i]);
        EXPECT_EQ(all[i]->emitterCells.size(), children[i]);
        EXPECT_EQ(all[i]->contents, draws[i] ? image : nullptr) << fireworksCellLabels[i];
        EXPECT_EQ(all[i]->color, i == 0 ? (Color{0.5F, 0.5F, 0.5F, 1.0F}) : Color{}) << fireworksCellLabels[i];
        EXPECT_TRUE(all[i]->extraAttributes.empty());
    }
    buildFireworksTree(layer, nullptr); // replaces the tree
    EXPECT_EQ(layer.emitterCells.size(), 1U);
    for (const EmitterCell* cell : cells()) {
        EXPECT_EQ(cell->contents, nullptr);
    }
}

TEST_F(EmitterModelTest, numbersKeepTheWidthOfTheirProperty) {
    for (const auto& row : properties) {
        const std::string path = std::string("emitterCells.rocket.emitterCells.firework.") + row.name;
        ASSERT_TRUE(layer.setValue(0.1, path));
        EXPECT_THAT(layer.value(path), Optional(row.isSingle ? static_cast<double>(0.1F) : 0.1)) << row.name;
        EXPECT_EQ(cells()[2]->value(row.name), layer.value(path));
    }
    EXPECT_TRUE(cells()[2]->extraAttributes.empty());
}

TEST_F(EmitterModelTest, nameThatIsNoPropertyIsKeptBesides) {
    ASSERT_TRUE(layer.setValue(140.0, "emitterCells.rocket.emitterCells.preSpark.birth"));
    EXPECT_THAT(layer.value("emitterCells.rocket.emitterCells.preSpark.birth"), Optional(140.0));
    EXPECT_EQ(cells()[3]->birthRate, 100.0F);
    EXPECT_EQ(layer.value("emitterCells.rocket.birth"), std::nullopt);
}

TEST_F(EmitterModelTest, pathsThatLeadToNoCellChangeNothing) {
    // The trail and spark cells have no name, so an empty component must not find them.
    for (const char* path : {"",
                             ".",
                             "velocity",
                             "emitterCells",
                             "emitterCells.",
                             "emitterCells.rocket",
                             "emitterCells.rocket.",
                             "emitterCells.rocket.emitterCells",
                             "emitterCells.rocket.emitterCells.",
                             "emitterCells..velocity",
                             "emitterCells.rocket.emitterCells..velocity",
                             "emitterCells.rocket..velocity",
                             "emitterCells.rocket.velocity.",
                             "emitterCells.rocket.velocity.x",
                             ".emitterCells.rocket.velocity",
                             "emitterCells.mortor.velocity",
                             "emitterCells.rocket.emitterCells.trail.velocity",
                             "emitterCells.firework.velocity",
                             "rocket.velocity",
                             "emitterCells.Rocket.velocity",
                             "emitterCells.rocket.emitterCells.preSpark.emitterCells..velocity"}) {
        EXPECT_FALSE(layer.setValue(7.0, path)) << path;
        EXPECT_EQ(layer.value(path), std::nullopt) << path;
    }
    for (const EmitterCell* cell : cells()) {
        EXPECT_NE(cell->velocity, 7.0);
        EXPECT_TRUE(cell->extraAttributes.empty());
    }
}

} // namespace

} // namespace starbloom
