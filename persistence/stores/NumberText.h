// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace starbloom {

// How the stores' texts become numbers and numbers texts. The point is always ".", whatever the user's language. No
// state, so any thread may call these.

/// The whole number at the start of the text, after blanks and with an optional sign: "14" and " 14.9 px" are 14. What
/// follows is ignored, no number is 0, and a number too large becomes the nearest that an int can hold.
int integerValue(std::string_view text);

/// The decimal number at the start of the text, likewise, with an optional exponent: "12.5", ".5", "1e3x". Names such
/// as "inf" and "nan" are no numbers, hence 0. The result is always finite: what is too large becomes the largest float
/// of that sign, what is too small 0.
float floatValue(std::string_view text);

/// The text of a number: up to seven significant digits, without trailing zeros: "400", "12.5", "0.1". Whole numbers of
/// more than seven digits, and fractions below 0.0001, take an exponent: "1e+07", "1.5e-05". Both zeros are "0", and so
/// is what is not finite. floatValue() gives back the same number if seven digits are enough for it, else a very near
/// one.
std::string textOfFloat(float number);

} // namespace starbloom
