// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

/// Sine and cosine of one angle.
struct SineCosine {
    double sine;
    double cosine;
};

/// The sine and cosine of an angle in radians, to within 1e-12 for |angle| below 1e6.
///
/// Our own because the C libraries' functions differ in the last bit between systems, and what they decide (where a
/// spark flies) must not. Only additions, multiplications and exact roundings are used.
SineCosine sineCosine(double angle);

} // namespace starbloom
