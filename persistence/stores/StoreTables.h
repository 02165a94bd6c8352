// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string>
#include <vector>

namespace starbloom {

/// One row of a store: the key (column `field`) and the value, both text.
struct StoreRow {
    std::string key;
    std::string value;
};

/// All that sets one store apart from another. The statements are those of the files that users already have, down to
/// the spacing, which differs between the tables and shows up in each file's own description of its table.
struct StoreDefinition {
    std::string table;
    std::string create;
    /// Each "%@" stands for a text; the key comes first.
    std::string insert;
    std::string select;
    /// Parameter 1 is the value, parameter 2 the key.
    std::string update;
    /// The rows of a new file, in their order. A row's position here is its position in the mirror, for good: rows that
    /// nothing reads hold the places of the others.
    std::vector<StoreRow> rows;
};

// The three tables. They are made on first use, never change, and may be read by any thread.

/// Frames of windows in points: Width, Height, Left and Top of frames 0 to 4; all "0", which means never saved.
const StoreDefinition& windowsDefinition();

/// Folders, movie settings and the fourteen slider positions: Value00 to Value98, position = number of the key.
const StoreDefinition& preferencesDefinition();

/// States of the preferences window's check boxes: Value01 to Value24, position = number of the key minus one.
const StoreDefinition& generalDefinition();

} // namespace starbloom
