// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"
#include "export/picture/PictureEncoder.h"

#include <cstddef>
#include <vector>

namespace starbloom {

/// A frame as the options' kind of picture. Changes the frame.
Result<std::vector<std::byte>> encodedPicture(ImageBuffer& image, const Options& options, const ShowNote& note);

/// Makes one picture file.
ExitStatus makePicture(const Options& options);

} // namespace starbloom
