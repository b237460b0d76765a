#pragma once

namespace unstruct {

/// What becomes of a database with blocks that do not fit: it cannot be opened, or, for programs
/// that examine files, it opens without them.
enum class ZRFxParseMode { STRICT, LENIENT };

}  // namespace unstruct
