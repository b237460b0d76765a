#pragma once

#include <string>
#include <string_view>

namespace nvf {

/// The text that printf gives in the "C" locale for `format` ('g', 'e' or 'f', capitals included)
/// with `precision` digits, whatever the locale of the process. A negative precision means 6.
std::string textOfNumber(double value, char format, int precision);

/// Reads a whole text as a number, ignoring blanks around it, whatever the locale. False when it is
/// no number, or out of the type's range. The largest double rounded up to 15 digits or more counts
/// as that double, so that it survives being written; a floating-point value too small becomes
/// zero.
template <typename T>
bool parseNumber(std::string_view text, T& value);

extern template bool parseNumber<int>(std::string_view, int&);
extern template bool parseNumber<unsigned int>(std::string_view, unsigned int&);
extern template bool parseNumber<float>(std::string_view, float&);
extern template bool parseNumber<double>(std::string_view, double&);

}  // namespace nvf
