// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

/// A colour in display RGB (sRGB-encoded values, not linear light), each component nominally 0..1, straight alpha.
struct Color {
    float red = 1.0F;
    float green = 1.0F;
    float blue = 1.0F;
    float alpha = 1.0F;

    friend bool operator==(const Color&, const Color&) = default;
};

} // namespace starbloom
