#include "InfoCommand.h"

namespace tools {

void addInfoCommand(CLI::App& application, ToolContext& context) {
    context.addCommand(application, "info", "", "", [] { return ToolContext::FINE; });
}

}  // namespace tools
