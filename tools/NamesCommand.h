#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx names".
void addNamesCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
