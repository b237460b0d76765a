#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx info".
void addInfoCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
