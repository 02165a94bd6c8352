// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/Presets.h"

#include "tests/support/HandDrivenCalls.h"

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <stdexcept>
#include <vector>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// A store of rows and a mirror that follows only when it is told to.
class FakeStore final : public PresetStore {
public:
    std::string preferenceAt(int position) const override {
        const auto row = mirror.find("Value" + std::to_string(position));
        return row != mirror.end() ? row->second : "";
    }

    void saveData1(std::string_view value, std::string_view key) override {
        if (key == failingKey) {
            throw std::runtime_error("cannot prepare the update");
        }
        rows[std::string(key)] = value;
        written.emplace_back(key);
        if (onWrite) {
            onWrite();
        }
    }

    void reloadOnlyDB1() override { mirror = rows; }

    std::map<std::string, std::string> rows;
    std::map<std::string, std::string> mirror;
    std::vector<std::string> written;
    std::string failingKey;
    std::function<void()> onWrite;
};

class PresetsTest : public testing::Test {
protected:
    PresetsTest() {
        presets.emplace(panel, store, calls,
                        PresetCallbacks{.slidersMoved = [this] { moves.push_back(panel.position(last)); },
                                        .setSaveButtonEnabled = [this](bool enabled) { button = enabled; }});
    }

    static constexpr auto last = Parameter::AnimateSpeed;
    PositionPanel panel;
    FakeStore store;
    HandDrivenCalls calls;
    std::vector<float> moves;
    bool button = true;
    std::optional<Presets> presets;
};

TEST_F(PresetsTest, loadingMovesAllSlidersAndThenAppliesThemOnce) {
    for (int i = 0; i < 14; ++i) {
        store.mirror["Value" + std::to_string(10 + i)] = std::to_string(i) + ".5";
    }
    store.mirror["Value13"] = "abc";
    presets->loadSettings6();
    EXPECT_EQ(panel.position(Parameter::RocketHeight), 0.5F);
    EXPECT_EQ(panel.position(Parameter::RocketVelocity), 0.0F);
    EXPECT_EQ(panel.position(Parameter::SparkleSize), 12.5F);
    EXPECT_EQ(moves, std::vector{13.5F});
}

TEST_F(PresetsTest, savesWhatTheSlidersShowTwoSecondsLater) {
    panel.setPosition(Parameter::RocketVelocity, 300.0F);
    presets->saveSettings6a();
    EXPECT_FALSE(button);
    calls.advance(1999ms);
    EXPECT_TRUE(store.written.empty());
    panel.setPosition(Parameter::RocketVelocity, 312.5F);
    calls.advance(1ms);
    EXPECT_TRUE(button);
    ASSERT_EQ(store.written.size(), 14);
    EXPECT_EQ(store.written.front(), "Value10");
    EXPECT_EQ(store.written.back(), "Value23");
    EXPECT_EQ(store.rows["Value13"], "312.5");
    EXPECT_EQ(calls.waiting(), 0);

    panel.setPosition(Parameter::RocketVelocity, 1.0F);
    presets->loadSettings6();
    EXPECT_EQ(panel.position(Parameter::RocketVelocity), 312.5F) << "the mirror was brought up to date";
}

TEST_F(PresetsTest, allPositionsAreReadBeforeTheFirstIsWritten) {
    store.onWrite = [this] { panel.setPosition(last, 0.0F); };
    presets->saveSettings6b();
    EXPECT_EQ(store.rows["Value23"], "100");
}

TEST_F(PresetsTest, theButtonIsEnabledEvenWhenWritingThrows) {
    store.failingKey = "Value15";
    presets->saveSettings6a();
    EXPECT_THROW(calls.advance(2s), std::runtime_error);
    EXPECT_TRUE(button);
    EXPECT_EQ(store.written.size(), 5);
    EXPECT_TRUE(store.mirror.empty());
}

TEST_F(PresetsTest, atMostOneSaveWaitsAndItDiesWithItsOwner) {
    presets->saveSettings6a();
    calls.advance(1s);
    presets->saveSettings6a();
    EXPECT_EQ(calls.waiting(), 1);
    presets.reset();
    EXPECT_EQ(calls.waiting(), 0);
    calls.advance(1min);
    EXPECT_TRUE(store.written.empty());
}

} // namespace

} // namespace starbloom
