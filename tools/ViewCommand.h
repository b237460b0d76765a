#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx view".
void addViewCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
