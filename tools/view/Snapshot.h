#pragma once

#include <string>

namespace tools {

/// Stores a JPEG file as the snapshot of a case, in place of the one that it has. False after a
/// failure; the reason is given where the library's log does not have it.
bool storeSnapshot(const std::string& file, const std::string& password, int caseId,
                   const std::string& jpeg, std::string* error);

}  // namespace tools
