#pragma once

#include <span>

namespace unstruct {

/// Floats hold more digits than these; rounding to more changes nothing.
inline constexpr int kMostRoundedDigits = 6;

/// Rounds values to a number of significant decimal digits by clearing the bits of the mantissa
/// that are not needed, which makes them pack better. A rounded value v' of v keeps
/// |v' - v| <= 0.5 * 10^-digits * |v|. Values without a value, infinite, denormal and zero ones
/// stay as they are, and so do those that would become undefined. `rounded` is of the size of
/// `values` and may be the same.
void RoundToDigits(std::span<const float> values, int digits, std::span<float> rounded);

}  // namespace unstruct
