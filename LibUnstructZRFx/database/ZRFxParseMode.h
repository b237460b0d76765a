#pragma once

namespace unstruct {

/// Whether a database with blocks that do not fit cannot be opened or, for programs that examine
/// files, opens without them.
enum class ZRFxParseMode { STRICT, LENIENT };

}  // namespace unstruct
