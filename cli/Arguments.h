// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "cli/OptionTable.h"

#include <map>
#include <span>
#include <string>
#include <vector>

namespace starbloom {

/// A command line taken apart by the option table, its values still as they were typed.
class Arguments {
public:
    /// The program's own name is not among the arguments. Fails for unknown options, missing values, and options that
    /// are given twice although they may not be.
    static Result<Arguments> parse(std::span<const std::string> arguments);

    bool given(OptionId option) const { return m_values.contains(option); }

    /// The value of an option that was given.
    const std::string& text(OptionId option) const { return texts(option).front(); }

    /// All values of an option; none when it was not given.
    const std::vector<std::string>& texts(OptionId option) const;

    /// Empty when there is none.
    const std::string& output() const { return m_output; }

private:
    std::map<OptionId, std::vector<std::string>> m_values;
    std::string m_output;
};

} // namespace starbloom
