// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ShowFile.h"

#include "base/WholeFile.h"
#include "cli/HexColor.h"
#include "cli/Limits.h"
#include "cli/Numbers.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

namespace starbloom {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* versionKey = "starbloom-show";
constexpr int version = 1;
constexpr std::size_t largestFile = 64U << 10U;
constexpr double farthestLaunch = 1.0e6;

/// The double whose shortest text is that of the float: 12.3 and not 12.300000190734863.
double withoutNoise(float number) {
    std::array<char, 32> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return parseNumber<double>({text.data(), end}).value_or(static_cast<double>(number));
}

/// Reads a file's entries one by one; the first fault is kept.
class Entries {
public:
    Entries(std::string path, const Json& object)
        : m_path(std::move(path))
        , m_object(object) {}

    /// The number of an entry, if it is there.
    std::optional<double> number(const char* key, double lowest, double highest) {
        const Json* found = find(key);
        return found == nullptr ? std::nullopt : numberOf(*found, key, lowest, highest);
    }

    std::optional<std::pair<double, double>> pair(const char* key, double lowest, double highest) {
        const Json* found = find(key);
        if (found == nullptr) {
            return std::nullopt;
        }
        if (!found->is_array() || found->size() != 2) {
            fail(key, "takes two numbers in brackets");
            return std::nullopt;
        }
        const auto first = numberOf((*found)[0], key, lowest, highest);
        const auto second = numberOf((*found)[1], key, lowest, highest);
        return first && second ? std::optional(std::pair(*first, *second)) : std::nullopt;
    }

    const Json* find(const char* key) {
        m_known.emplace_back(key);
        const auto found = m_object.find(key);
        return found == m_object.end() ? nullptr : &*found;
    }

    void fail(const std::string& key, const std::string& what) {
        if (!m_error) {
            m_error = Error{m_path + ": \"" + key + "\" " + what};
        }
    }

    /// After all entries have been asked for.
    Result<void> result() {
        for (const auto& [key, value] : m_object.items()) {
            if (std::ranges::find(m_known, key) == m_known.end()) {
                fail(key, "is not known here");
            }
        }
        return m_error ? Result<void>(*m_error) : Result<void>();
    }

private:
    std::optional<double> numberOf(const Json& value, const char* key, double lowest, double highest) {
        const double number = value.is_number() ? value.get<double>() : std::nan("");
        if (!(number >= lowest && number <= highest)) {
            fail(key, "takes a number from " + brief(lowest) + " to " + brief(highest));
            return std::nullopt;
        }
        return number;
    }

    std::string m_path;
    const Json& m_object;
    std::vector<std::string> m_known;
    std::optional<Error> m_error;
};

Result<Json> parsed(const std::filesystem::path& file) {
    const auto bytes = readWholeFile(file, largestFile);
    if (!bytes) {
        return bytes.error();
    }
    if (!bytes.value()) {
        return Error{file.string() + ": No such file or directory"};
    }
    const auto* text = reinterpret_cast<const char*>(bytes.value()->data());
    try {
        Json json = Json::parse(text, text + bytes.value()->size());
        if (json.is_object() && json.contains(versionKey)) {
            return json;
        }
    } catch (const nlohmann::json::exception& error) {
        // The library's words begin with a code in brackets, "] " behind it, and may quote the file at length.
        std::string what = error.what();
        what = what.substr(what.find("] ") + 2);
        return Error{file.string() + ": " + (what.size() > 160 ? what.substr(0, 160) + "..." : what)};
    }
    return Error{file.string() + ": it holds no show; one begins {\"" + versionKey + "\": 1, ...}"};
}

Result<void> readPositions(const std::string& path, const Json& json, Options& options) {
    if (!json.is_object()) {
        return Error{path + ": \"positions\" takes names and positions in braces"};
    }
    Entries entries(path, json);
    for (const ParameterRow& each : parameterTable) {
        if (const auto position = entries.number(std::string(each.name).c_str(), static_cast<double>(each.minimum),
                                                 static_cast<double>(each.maximum))) {
            options.positions.setPosition(each.parameter, static_cast<float>(*position));
        }
    }
    return entries.result();
}

void readSeed(Entries& entries, Options& options) {
    const Json* seed = entries.find("seed");
    if (seed == nullptr) {
        return;
    }
    if (!seed->is_number_unsigned()) {
        entries.fail("seed", "takes a whole number from 0 to " + std::to_string(~std::uint64_t{0}));
        return;
    }
    options.seed = seed->get<std::uint64_t>();
}

void readBackground(Entries& entries, Options& options) {
    const Json* background = entries.find("background");
    if (background == nullptr) {
        return;
    }
    const auto color = background->is_string() ? colorOfHex(background->get<std::string>()) : std::nullopt;
    if (!color) {
        entries.fail("background", "takes a colour of six hexadecimal digits, such as \"101830\"");
        return;
    }
    options.background = *color;
}

StageShape readStage(Entries& entries) {
    StageShape shape;
    shape.pixelsPerPoint = entries.number("scale", leastScale, mostScale).value_or(1.0);
    if (const auto size = entries.pair("size", 1.0, largestSide)) {
        shape.stage = {std::round(size->first) / shape.pixelsPerPoint, std::round(size->second) / shape.pixelsPerPoint};
    }
    if (const auto launch = entries.pair("launchPoint", -farthestLaunch, farthestLaunch)) {
        shape.launchPoint = Point{launch->first, launch->second};
    }
    return shape;
}

} // namespace

std::string showFileText(const Options& options) {
    Json positions = Json::object();
    for (const ParameterRow& each : parameterTable) {
        positions[std::string(each.name)] = withoutNoise(options.positions.position(each.parameter));
    }
    Json json{{versionKey, version},
              {"positions", positions},
              {"seed", options.seed},
              {"size", {options.width, options.height}},
              {"scale", options.pixelsPerPoint},
              {"background", hexOf(options.background)},
              {"fadeIn", options.fadeIn}};
    if (options.launchPoint) {
        json["launchPoint"] = {options.launchPoint->x, options.launchPoint->y};
    }
    return json.dump(4) + "\n";
}

Result<StageShape> readShowFile(const std::filesystem::path& file, Options& options) {
    const auto json = parsed(file);
    if (!json) {
        return json.error();
    }
    Entries entries(file.string(), json.value());
    if (entries.number(versionKey, version, version) != version) {
        return Error{file.string() + ": it is a show of a later version of this program"};
    }
    if (const Json* positions = entries.find("positions")) {
        if (auto read = readPositions(file.string(), *positions, options); !read) {
            return read.error();
        }
    }
    readSeed(entries, options);
    readBackground(entries, options);
    options.fadeIn = entries.number("fadeIn", 0.0, longestFadeIn).value_or(0.0);
    const StageShape shape = readStage(entries);
    if (auto read = entries.result(); !read) {
        return read.error();
    }
    return shape;
}

} // namespace starbloom
