#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tools {

/// How text for people looks where standard output is a terminal. Elsewhere, in files and pipes,
/// all of these leave it as it is.

enum class Paint { BOLD, RED, YELLOW };

/// In a colour, unless NO_COLOR is set to anything, or the terminal has none.
std::string painted(std::string_view text, Paint paint);

/// A line in as many lines as it needs on the terminal, divided at blanks; all but the first begin
/// with so many blanks. `used` columns are before it.
std::string wrapped(std::string_view line, std::size_t indent, std::size_t used = 0);

/// With an ellipsis in place of its middle, where it does not fit behind so many columns.
std::string shortened(std::string_view text, std::size_t used);

}  // namespace tools
