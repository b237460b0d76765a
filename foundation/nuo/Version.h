#pragma once

#include "nvf/String.h"

namespace nuo {

/// Major in bits 16 to 23, minor in bits 8 to 15, patch in bits 0 to 7.
unsigned int packedVersion();

/// For example "3.11.0".
nvf::String versionText();

}  // namespace nuo
