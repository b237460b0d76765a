#pragma once

#include "ToolContext.h"

namespace tools {

/// `help` and `version`, which users try before they know the options. To be added last.
void addHelpCommands(CLI::App& application, ToolContext& context, const std::string& version);

}  // namespace tools
