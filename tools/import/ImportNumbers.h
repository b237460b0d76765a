#pragma once

#include <string_view>

namespace tools {

/// A number that is the whole text, without blanks; false when it is none. Values are correctly
/// rounded; one that is too small or too large for its type is zero or infinite.
bool readInteger(std::string_view text, int* value);
bool readFloat(std::string_view text, float* value);
bool readDouble(std::string_view text, double* value);

}  // namespace tools
