// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"

#include <filesystem>

namespace starbloom {

/// Tells by its name what an output is to be: sets `options.output`, the kind and the format.
/// A .gif is a picture unless it `moves`.
Result<void> readOutputName(const std::string& name, bool moves, Options& options);

/// The name of a numbered series with the number of one frame in it: frame%05d.png with 7 is frame00007.png. A name
/// without a place for the number stays as it is.
std::filesystem::path numberedPath(const std::filesystem::path& series, std::int64_t frame);

} // namespace starbloom
