#include "ListCommand.h"

namespace tools {

void addListCommand(CLI::App& application, ToolContext& context) {
    context.addCommand(application, "list", "", "", [] { return ToolContext::FINE; });
}

}  // namespace tools
