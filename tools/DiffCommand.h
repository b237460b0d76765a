#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx diff".
void addDiffCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
