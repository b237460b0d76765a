#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx cat".
void addCatCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
