#pragma once

#include "ToolContext.h"

namespace tools {

/// Adds "zrfx merge".
void addMergeCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
