#include "ExtractCommand.h"

namespace tools {

void addExtractCommand(CLI::App& application, ToolContext& context) {
    context.addCommand(application, "extract", "", "", [] { return ToolContext::FINE; });
}

}  // namespace tools
