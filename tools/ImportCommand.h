#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx import".
void addImportCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
