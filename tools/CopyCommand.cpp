#include "CopyCommand.h"

namespace tools {

void addCopyCommand(CLI::App& application, ToolContext& context) {
    context.addCommand(application, "copy", "", "", [] { return ToolContext::FINE; });
}

}  // namespace tools
