#pragma once

#include <string>

#include "Text.h"
#include "quantities/Statistics.h"

namespace tools {

/// "node 17 of Flange (1, 0, 0.5)".
std::string placeText(const Extreme& extreme, int mapping);

/// "4.25 at node 17 of Flange (1, 0, 0.5)".
std::string extremeText(const Extreme& extreme, int mapping);

/// The same as "value", "node" or "element" or both, "part", "partName" and "position".
Json extremeJson(const Extreme& extreme, int mapping);

}  // namespace tools
