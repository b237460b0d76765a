#pragma once

namespace tools {

/// One of the two files that are compared, or none.
enum class Side { NONE, A, B };

}  // namespace tools
