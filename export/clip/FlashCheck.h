// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "export/clip/ClipWriter.h"

#include <cstdint>
#include <memory>

namespace starbloom {

/// The worst second of a clip, for one kind of flashes.
struct FlashFinding {
    bool passes = true;

    /// How many flashes the field that has most sees within this second; half of one is a change without the change
    /// back. More than 3 do not pass.
    double flashes = 0.0;

    double start = 0.0; ///< Seconds from the start of the clip to the first of these changes.

    /// How much of the field, 0 to 1, had changed when the largest of these changes was counted. Up to a quarter does
    /// not count, so this is above 0.25, or 0 where nothing counted.
    double area = 0.0;

    /// The field: its centre, in parts of the picture from the left and from the top.
    double x = 0.5;
    double y = 0.5;
};

struct FlashReport {
    FlashFinding general; ///< Light and dark.
    FlashFinding red;     ///< Saturated red, which is harmful at lower contrast.

    bool passes() const { return general.passes && red.passes; }
};

enum class Playback {
    Once,
    RoundAndRound, ///< The first frame follows the last.
};

/// Tells whether a clip could cause seizures: whether it stays within the thresholds for general and red flashes of the
/// W3C's Web Content Accessibility Guidelines 2.2 (success criterion 2.3.1, "Three Flashes or Below Threshold", and
/// the definition of "general flash and red flash thresholds").
///
/// What is counted, where the definition leaves a choice the stricter way:
/// - A *change* of a spot is a rise or fall of relative luminance by 10 % or more of the largest possible one, from the
///   last turning point on, where the darker of the two is below 0.80. Relative luminance is 0.2126 R + 0.7152 G +
///   0.0722 B of linear light (sRGB). A red change is one of more than 20 in 320 max(0, R - G - B), where R / (R + G +
///   B) is 0.8 or more on one of its sides.
/// - A *field* is what ten degrees of sight cover of a picture that fills a screen: a third of its width by a third of
///   its height (341 x 256 of 1024 x 768 pixels), anywhere on it.
/// - A *change of a field* happens when more than a quarter of its spots change in the same direction at once, which
///   means within a tenth of a second. Rises and falls of a field alternate: a light that goes on spreading is one
///   rise.
/// - A *flash* is a change and the opposite change after it. The clip passes when no field has more than three flashes,
///   which are six changes, within any second. What lies a whole second apart is not within one.
///
/// Spots are the cells of a grid, 48 along the longer side, whose pixels are averaged as linear light. The arithmetic
/// is in integers, so the same frames give the same report on every machine.
///
///     FlashCheck check(640, 480, {30, 1});
///     for (const ImageBuffer& frame : frames) check.add(frame);
///     if (!check.report().passes()) ...
///
/// Of a clip that is played round and round, the seam and the rounds after the first count as well.
///
/// Frames are as a viewer sees them; alpha is ignored. One thread at a time.
class FlashCheck {
public:
    /// Width and height in pixels, at least 1.
    FlashCheck(int width, int height, FrameRate rate, Playback playback = Playback::Once);
    ~FlashCheck();
    FlashCheck(FlashCheck&& other) noexcept;
    FlashCheck& operator=(FlashCheck&& other) noexcept;

    /// The next frame, which must have the size that was told.
    void add(const ImageBuffer& frame);

    /// Of all frames so far, which are a whole round where rounds are played.
    FlashReport report() const;

private:
    class Analysis;
    std::unique_ptr<Analysis> m_analysis;
};

} // namespace starbloom
