// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/picture/ShowNote.h"

#include "base/WholeFile.h"
#include "export/picture/PictureComments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <utility>

namespace starbloom {

namespace {

constexpr std::string_view firstWord = "starbloom-show=1";
constexpr std::size_t longestText = 4096; // A note is about 600 characters long.
constexpr std::size_t longestName = 40;
constexpr std::size_t largestFile = std::size_t{1} << 30U;

template <typename Number>
std::string exact(Number number) {
    std::array<char, 40> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr};
}

bool isPlain(char c) {
    return c > ' ' && c <= '~';
}

std::string plain(std::string text) {
    text.resize(std::min(text.size(), longestName));
    std::ranges::replace_if(
        text, [](char c) { return !isPlain(c); }, '-');
    return text.empty() ? "-" : text;
}

/// Takes values out of a note's text and remembers the first that is wrong.
class NoteReader {
public:
    explicit NoteReader(std::string_view text) {
        while (!text.empty()) {
            const auto word = text.substr(0, text.find(' '));
            text.remove_prefix(std::min(word.size() + 1, text.size()));
            const auto equals = word.find('=');
            if (equals == std::string_view::npos ||
                !m_values.emplace(word.substr(0, equals), word.substr(equals + 1)).second) {
                blame(word);
            }
        }
    }

    std::string_view take(std::string_view key) {
        const auto found = m_values.find(key);
        if (found == m_values.end()) {
            blame(key);
            return {};
        }
        const auto value = found->second;
        m_values.erase(found);
        return value;
    }

    /// Numbers with a separator between them, each within the limits.
    template <typename Number, std::size_t count>
    std::array<Number, count> numbers(std::string_view key, char separator, Number lowest, Number highest) {
        std::array<Number, count> result{};
        const auto text = take(key);
        const char* at = text.data();
        const char* const end = at + text.size();
        for (std::size_t i = 0; i < count; ++i) {
            const auto [next, error] = std::from_chars(at, end, result[i]);
            const bool isLast = i + 1 == count;
            // Not a number is neither within the limits nor outside.
            if (error != std::errc() || !(result[i] >= lowest && result[i] <= highest) ||
                (isLast ? next != end : next == end || *next != separator)) {
                blame(key);
                return result;
            }
            at = next + 1;
        }
        return result;
    }

    template <typename Number>
    Number number(std::string_view key, Number lowest, Number highest) {
        return numbers<Number, 1>(key, ' ', lowest, highest)[0];
    }

    std::string name(std::string_view key) {
        const auto text = take(key);
        if (text.empty() || text.size() > longestName || !std::ranges::all_of(text, isPlain)) {
            blame(key);
        }
        return std::string(text);
    }

    bool flag(std::string_view key) {
        const auto text = take(key);
        if (text != "yes" && text != "no") {
            blame(key);
        }
        return text == "yes";
    }

    /// Empty when all was well and nothing is left over.
    std::string fault() {
        if (!m_values.empty()) {
            blame(m_values.begin()->first);
        }
        return m_fault;
    }

private:
    void blame(std::string_view word) {
        if (m_fault.empty()) {
            m_fault = plain(std::string(word));
        }
    }

    std::map<std::string_view, std::string_view> m_values;
    std::string m_fault;
};

} // namespace

std::string toText(const ShowNote& note) {
    const Color& color = note.background;
    std::string text(firstWord);
    const auto add = [&text](std::string_view key, const std::string& value) {
        text.append(" ").append(key).append("=").append(value);
    };
    add("program", plain(note.program));
    add("version", plain(note.version));
    add("seed", exact(note.seed));
    add("moment", exact(note.moment));
    add("steady", note.steady ? "yes" : "no");
    add("stage", exact(note.stage.width) + "x" + exact(note.stage.height));
    add("scale", exact(note.pixelsPerPoint));
    add("launch", exact(note.launchPoint.x) + "," + exact(note.launchPoint.y));
    add("background", exact(color.red) + "," + exact(color.green) + "," + exact(color.blue) + "," + exact(color.alpha));
    for (const ParameterRow& each : parameterTable) {
        add(each.name, exact(note.positions[static_cast<std::size_t>(each.parameter)]));
    }
    return text;
}

Result<ShowNote> parseShowNote(std::string_view text) {
    if (!text.starts_with(firstWord) || text.size() > longestText) {
        return Error{"that is no description of a show"};
    }
    NoteReader reader(text);
    reader.take(firstWord.substr(0, firstWord.find('=')));
    ShowNote note;
    note.program = reader.name("program");
    note.version = reader.name("version");
    note.seed = reader.number<std::uint64_t>("seed", 0, ~std::uint64_t{0});
    note.moment = reader.number("moment", 0.0, 1e12);
    note.steady = reader.flag("steady");
    const auto stage = reader.numbers<double, 2>("stage", 'x', 1.0, 65536.0);
    note.stage = {stage[0], stage[1]};
    note.pixelsPerPoint = reader.number("scale", 0.001, 1000.0);
    const auto launch = reader.numbers<double, 2>("launch", ',', -1e6, 1e6);
    note.launchPoint = {launch[0], launch[1]};
    const auto color = reader.numbers<float, 4>("background", ',', 0.0F, 1.0F);
    note.background = {color[0], color[1], color[2], color[3]};
    for (const ParameterRow& each : parameterTable) {
        note.positions[static_cast<std::size_t>(each.parameter)] = reader.number(each.name, -1e9F, 1e9F);
    }
    const std::string fault = reader.fault();
    return fault.empty() ? Result<ShowNote>(std::move(note))
                         : Error{"the description of its show is damaged at '" + fault + "'"};
}

Result<ShowNote> readShowNote(const std::filesystem::path& path) {
    const auto file = readWholeFile(path, largestFile);
    if (!file) {
        return file.error();
    }
    const auto cannotRead = [&path](const std::string& why) {
        return Error{"cannot read " + path.string() + ": " + why};
    };
    if (!file.value()) {
        return cannotRead("No such file or directory");
    }
    for (const std::string_view comment : pictureComments(*file.value())) {
        if (comment.starts_with(firstWord)) {
            auto note = parseShowNote(comment);
            return note ? note : cannotRead(note.error().message);
        }
    }
    return cannotRead("it does not tell of a show (pictures of other programs and BMP files do not)");
}

} // namespace starbloom
