// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/FramePipeline.h"
#include "cli/Options.h"
#include "export/clip/FlashCheck.h"

#include <optional>

namespace starbloom {

/// Looks at the frames of a run on their way, if --check-flashes asks for it, and tells what it found.
class FlashWatch {
public:
    explicit FlashWatch(const Options& options);

    /// For runFrames(); refers to this object.
    FrameWatch watch();

    /// Prints the result, in JSON with the progress if that is in JSON. False when there are too many flashes. `clean`
    /// keeps it off standard output, which then carries the clip.
    bool report(bool clean) const;

private:
    std::optional<FlashCheck> m_check;
    double m_firstSecond; ///< Of the frames that are made, within the whole.
};

} // namespace starbloom
