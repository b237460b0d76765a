#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx extract".
void addExtractCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
