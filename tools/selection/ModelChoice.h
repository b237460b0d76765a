#pragma once

#include <string>
#include <vector>

namespace tools {

/// What of a model is wanted, by name or id, or by several with commas between; where nothing is
/// named, all of it.
struct ModelChoice {
    std::vector<std::string> results;
    std::vector<std::string> states;  ///< Also "last".
    std::vector<std::string> parts;

    bool isEmpty() const { return results.empty() && states.empty() && parts.empty(); }
};

}  // namespace tools
