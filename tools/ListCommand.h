#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx list".
void addListCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
