#pragma once

#include <string_view>

namespace view {

/// The page's text before the data and after them; empty when the program was built without it.
std::string_view pageHead();
std::string_view pageTail();

}  // namespace view
