#include "CheckCommand.h"

namespace tools {

void addCheckCommand(CLI::App& application, ToolContext& context) {
    context.addCommand(application, "check", "", "", [] { return ToolContext::FINE; });
}

}  // namespace tools
