#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "NuoCore/Vec3f.h"
#include "ZRArray.h"
#include "types/ZRFxValueKind.h"

namespace unstruct {

/// The lines of text data files, the same whatever the locale of the process. Floats are written
/// with six significant digits ("%g"); "UNDEF" stands for an undefined float and for a vector or
/// tensor of which all components are undefined.
namespace textdata {

/// The floats of a tensor, which lie one after the other in a float array.
constexpr int kTensorComponents = kTensorKind.Dimension();

/// Appends one line, line end included. Of integers, one item alone has no blank behind it, each of
/// several has.
void AppendIntLine(const std::int32_t* items, int count, std::string& text);
void AppendFloatLine(const float* components, int count, std::string& text);
void AppendUbyteLine(unsigned char item, std::string& text);

/// Appends the items of one line to an array. False when the line holds anything else: integers are
/// 1 to 20 a line, floats exactly `count`, which "UNDEF" fills as well.
bool ParseIntLine(std::string_view line, ZRIntArray& items);
bool ParseFloatLine(std::string_view line, int count, float* components);

}  // namespace textdata
}  // namespace unstruct
