#pragma once

namespace unstruct {

/// How an archive is opened. CREATE drops what the file held, with the first commit.
enum class ZRZipAccessMode : int { UPDATE = 0, READ_ONLY = 1, CREATE = 2 };

}  // namespace unstruct
