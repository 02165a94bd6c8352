// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace starbloom {

/// The comments of a PNG (tEXt), JPEG (COM), GIF (comment extension), TIFF (ImageDescription) or JPEG 2000 (COM), in
/// the order of the file; none of anything else.
///
/// Only structure is walked, no pixel is decoded. The bytes are not trusted: every length is checked, the walk ends
/// where the file makes no sense, and at most a few comments of a few thousand characters come out. Any thread.
std::vector<std::string> pictureComments(std::span<const std::byte> file);

} // namespace starbloom
