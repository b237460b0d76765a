#pragma once

#include <functional>

namespace nuo::zrfx {

/// Is called while an operation goes on, in the thread of its caller, with the fraction of it that
/// is done, growing from 0 to 1 or nearly so, some hundred times at most. False stops the
/// operation, which then fails with Error::CANCELLED; so does an exception, which goes no further.
/// Nothing of the file may be used in it; other files may.
using ProgressCallback = std::function<bool(double fraction)>;

}  // namespace nuo::zrfx
