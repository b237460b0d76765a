#pragma once

#include <cstddef>
#include <cstdint>

#include "import/ImportReader.h"

namespace fuzz {

/// Imports a file of any bytes as `zrfx import` does. What comes of it must open.
void importInput(tools::ImportReader& reader, const std::uint8_t* data, std::size_t size);

}  // namespace fuzz
