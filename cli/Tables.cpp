// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Tables.h"

#include "cli/FramePipeline.h"
#include "engine/model/FireworksTree.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <tuple>

namespace starbloom {

namespace {

template <typename Number>
void appendNumber(std::string& text, Number number) {
    std::array<char, 40> digits{};
    const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text.append(digits.data(), end);
}

} // namespace

std::string particleTable(const Options& options) {
    struct Row {
        int cell;
        double birth;
        SparkState state;
    };

    FrameRenderer renderer(options);
    const Simulation& simulation = renderer.particlesAtMoment(renderer.pictureMoment());
    std::vector<Row> rows;
    for (const SparkBatch& batch : simulation.sparks()) {
        for (std::size_t i = 0; i < batch.size(); ++i) {
            if (const auto state = batch.stateAt(i, simulation.time())) {
                rows.push_back({batch.law().cell, batch.time[i], *state});
            }
        }
    }
    std::ranges::sort(rows, {},
                      [](const Row& row) { return std::tuple(row.cell, row.birth, row.state.x, row.state.y); });
    std::string text = "cell,birth,age,x,y,scale,rotation,r,g,b,a\n";
    for (const auto& [cell, birth, state] : rows) {
        text += fireworksCellLabels.at(static_cast<std::size_t>(cell));
        text += ',';
        appendNumber(text, birth);
        for (const float value : {state.age, state.x, state.y, state.scale, state.rotation, state.color.red,
                                  state.color.green, state.color.blue, state.color.alpha}) {
            text += ',';
            appendNumber(text, value);
        }
        text += '\n';
    }
    return text;
}

std::string parameterList() {
    std::string text;
    std::array<char, 256> line{};
    const auto addLine = [&](const char* name, const char* range, const char* reset, const std::string& effect) {
        std::snprintf(line.data(), line.size(), "%-22s  %-10s  %5s  ", name, range, reset);
        text += line.data() + effect + "\n";
    };
    addLine("NAME", "RANGE", "RESET", "WHAT IT DOES");
    for (const ParameterRow& row : parameterTable) {
        std::array<char, 32> range{};
        std::snprintf(range.data(), range.size(), "%g..%g", static_cast<double>(row.minimum),
                      static_cast<double>(row.maximum));
        addLine(std::string(row.name).c_str(), range.data(), std::to_string(row.resetPosition).c_str(),
                std::string(row.effect));
    }
    return text;
}

} // namespace starbloom
