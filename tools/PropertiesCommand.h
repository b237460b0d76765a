#pragma once

#include "ToolContext.h"

namespace tools {

/// zrfx properties: the catalogue of viewer settings.
void addPropertiesCommand(CLI::App& application, ToolContext& context);

}  // namespace tools
