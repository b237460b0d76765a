#include "DiffCommand.h"

namespace tools {

void addDiffCommand(CLI::App& application, ToolContext& context) {
    context.addCommand(application, "diff", "", "", [] { return ToolContext::FINE; });
}

}  // namespace tools
