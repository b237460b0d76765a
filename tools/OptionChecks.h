#pragma once

#include <climits>
#include <functional>
#include <string>

namespace tools {

/// Checks of the arguments of options: empty for a good one, else a sentence that says what is
/// wrong, which the program shows after the name of the option.

/// A finite number of 0 or more.
std::string nonNegativeNumber(const std::string& text);

/// A whole number between two others, both included.
std::function<std::string(const std::string&)> wholeNumber(int least, int most = INT_MAX);

}  // namespace tools
