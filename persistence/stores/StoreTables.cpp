// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/stores/StoreTables.h"

#include <array>
#include <cstddef>

namespace starbloom {

namespace {

std::string numberedKey(int number) {
    return std::string("Value") + static_cast<char>('0' + number / 10) + static_cast<char>('0' + number % 10);
}

/// Rows Value<first> to Value<last>, all "0".
std::vector<StoreRow> numberedRows(int first, int last) {
    std::vector<StoreRow> rows;
    for (int number = first; number <= last; ++number) {
        rows.push_back({numberedKey(number), "0"});
    }
    return rows;
}

std::vector<StoreRow> windowRows() {
    std::vector<StoreRow> rows;
    for (const char frame : {'0', '1', '2', '3', '4'}) {
        for (const char* side : {"Width", "Height", "Left", "Top"}) {
            rows.push_back({std::string(side) + frame, "0"});
        }
    }
    return rows;
}

std::vector<StoreRow> preferenceRows() {
    /// The factory positions of the sliders, in the order of the panel.
    constexpr std::array sliders{"5", "5", "1", "400", "100", "250", "20", "130", "0", "80", "10", "18", "6", "100"};
    constexpr std::size_t firstSlider = 10;

    auto rows = numberedRows(0, 98);
    rows[5].value = "14"; // the movie's length, as an index of its pop-up
    rows[7].value = "2";  // the length of the movie's fade-in, likewise
    for (std::size_t i = 0; i < sliders.size(); ++i) {
        rows[firstSlider + i].value = sliders[i];
    }
    return rows;
}

} // namespace

const StoreDefinition& windowsDefinition() {
    static const StoreDefinition definition{
        "Windows",
        "CREATE TABLE IF NOT EXISTS Windows (ID INTEGER PRIMARY KEY AUTOINCREMENT, field text, value text)",
        "INSERT INTO Windows (field,value) values ('%@','%@')",
        "Select * From Windows",
        "update Windows set value=? where field=?",
        windowRows()};
    return definition;
}

const StoreDefinition& preferencesDefinition() {
    static const StoreDefinition definition{
        "Preferences",
        "CREATE TABLE IF NOT EXISTS Preferences (ID INTEGER PRIMARY KEY AUTOINCREMENT,field text,value text)",
        "INSERT INTO Preferences (field,value) values ('%@', '%@')",
        "Select * From Preferences",
        "update Preferences set value=? where field=?",
        preferenceRows()};
    return definition;
}

const StoreDefinition& generalDefinition() {
    static const StoreDefinition definition{
        "General",
        "CREATE TABLE IF NOT EXISTS General (ID INTEGER PRIMARY KEY AUTOINCREMENT,field text,value text)",
        "INSERT INTO General (field,value) values ('%@', '%@')",
        "Select * From General",
        "update General set value=? where field=?",
        numberedRows(1, 24)};
    return definition;
}

} // namespace starbloom
