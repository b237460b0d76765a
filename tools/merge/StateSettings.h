#pragma once

#include <vector>

#include "access/ZROZRFxAccess.h"

namespace tools {

/// Lets the cases of a database that show several states show new ones as well. The library's log
/// says why it failed.
bool showNewStates(unstruct::ZRFxAccess& access, int database, const std::vector<int>& states);

}  // namespace tools
