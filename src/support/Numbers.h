#pragma once

#include <QString>
#include <cstdint>

namespace tarvex {

// The leading number of a text, as the classic BASIC Val reads it: blanks, tabs and line
// feeds are skipped anywhere, an optional sign, digits with one decimal point, an optional
// exponent ("E" or "D"), or a "&H"/"&O" prefixed integer. No number gives 0.
double Val(const QString& text);

// The leading decimal number of a text: blanks skipped anywhere, an optional sign, digits
// with one decimal point. Nothing else counts: no "&H" or "&O" prefix and no exponent
// ("1E3" is 1). No number gives 0.
double DecimalVal(const QString& text);

// Rounds to the nearest integer, ties to the even one (2.5 -> 2, 3.5 -> 4).
double RoundHalfEven(double value);

// Checked conversions to 16 and 32-bit integers: a value outside the range is an
// OverflowFault. Fractions are rounded half to even first.
int16_t ToInt16(double value);
int32_t ToInt32(double value);

} // namespace tarvex
