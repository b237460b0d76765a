#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx copy".
void addCopyCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
