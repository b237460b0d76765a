#pragma once

#include <string>
#include <vector>

#include "diff/Tolerances.h"

namespace tools {

/// What is compared, and how.
struct DiffOptions {
    Tolerances::Texts tolerances;
    std::vector<std::string> ignored;
    bool isExact = false;           ///< Block by block, in place of what the blocks mean.
    bool wantsOnlyResults = false;  ///< States and results only.
};

}  // namespace tools
