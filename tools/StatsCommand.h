#pragma once

#include "ToolContext.h"

namespace tools {

void addStatsCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
