// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/clip/ClipOutput.h"
#include "export/clip/ClipWriter.h"

#include <memory>

namespace starbloom {

// One function per family of clips, each in a file of its own. Settings have been checked.

using MadeClipWriter = Result<std::unique_ptr<ClipWriter>>;

/// ProRes and VP9.
MadeClipWriter makeLibavClipWriter(ClipFormat format, ClipOutput output, const ClipSettings& settings);

MadeClipWriter makeWebPClipWriter(ClipOutput output, const ClipSettings& settings);

MadeClipWriter makeApngClipWriter(ClipOutput output, const ClipSettings& settings);

MadeClipWriter makeGifClipWriter(ClipOutput output, const ClipSettings& settings);

/// Raw RGBA and Y4M.
MadeClipWriter makeRawClipWriter(ClipFormat format, ClipOutput output, const ClipSettings& settings);

} // namespace starbloom
