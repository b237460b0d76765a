#include "CatCommand.h"

namespace tools {

void addCatCommand(CLI::App& application, ToolContext& context) {
    context.addCommand(application, "cat", "", "", [] { return ToolContext::FINE; });
}

}  // namespace tools
