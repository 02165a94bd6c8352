// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "engine/time/Show.h"

#include <cstdint>
#include <vector>

namespace starbloom {

/// Tells how many moments a frame needs so that no spark is seen twice along its way: none moves by more than a pixel
/// from one to the next, or where that takes many of them, by more than a quarter of its width, and none flickers
/// between them. Plays the show itself, a little ahead; moments that are asked for in order cost least. One thread at a
/// time.
class BlurSteps {
public:
    /// Never reached by a show at its usual speed. As many pictures as this can be summed.
    static constexpr int most = 16384;

    /// `exposure` is how long the shutter is open, in seconds of the layer's own time.
    BlurSteps(Show show, double exposure, double pixelsPerPoint);

    /// For a shutter that opens at that moment of the layer's time. 1 when nothing is seen.
    int at(double moment);

private:
    ShowPlayer m_ahead;
    double m_exposure;
    double m_pixelsPerPoint;
};

/// Averages pictures as a camera would, or the eye of somebody who sees them in quick succession: the light of their
/// pixels, and not the numbers that stand for it. In integers, so the same bytes come out for any number of threads;
/// rows are shared out in the caller's oneTBB arena.
class LightAverage {
public:
    /// The pictures that follow have the size of the first. Alpha is ignored.
    void add(const ImageBuffer& image);

    /// Writes the mean of all that has been added since the last time, at least one picture, with opaque pixels.
    void take(ImageBuffer& image);

private:
    std::vector<std::uint32_t> m_sums; ///< Of linear light in 16 bits, three channels.
    std::uint32_t m_count = 0;
};

} // namespace starbloom
