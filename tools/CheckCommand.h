#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx check".
void addCheckCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
