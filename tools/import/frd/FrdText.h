#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tools {

/// The text in `width` columns from `column` on, of a line that may be shorter.
std::string_view frdField(std::string_view line, std::size_t column, std::size_t width);

/// Whether a line within a block has a key, which is two characters such as "-1".
bool isFrdItem(std::string_view line, const char* key);

std::string_view frdTrimmed(std::string_view text);

/// A number in a field of fixed width, with blanks around it; false when there is none. A blank
/// field of an integer is 0, as Fortran reads it.
bool readFrdInteger(std::string_view field, int* value);

/// Correctly rounded. Fortran's forms are read, such as "1.5-101" and "1D+3"; what a float cannot
/// hold is zero or infinite.
bool readFrdFloat(std::string_view field, float* value);
bool readFrdDouble(std::string_view field, double* value);

}  // namespace tools
