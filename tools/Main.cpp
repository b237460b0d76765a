// zrfx: shows, checks, compares, copies and makes ZRFx files.
#include <cstdio>
#include <exception>
#include <iostream>

#include "CatCommand.h"
#include "CheckCommand.h"
#include "CopyCommand.h"
#include "DiffCommand.h"
#include "ExtractCommand.h"
#include "ImportCommand.h"
#include "InfoCommand.h"
#include "ListCommand.h"
#include "NuoZRFx/ZRFxComponent.h"
#include "PropertiesCommand.h"
#include "ToolContext.h"

namespace {

void addCommands(CLI::App& application, tools::ToolContext& context) {
    tools::addInfoCommand(application, context);
    tools::addListCommand(application, context);
    tools::addCheckCommand(application, context);
    tools::addExtractCommand(application, context);
    tools::addCatCommand(application, context);
    tools::addDiffCommand(application, context);
    tools::addCopyCommand(application, context);
    tools::addImportCommand(application, context);
    tools::addPropertiesCommand(application, context);
}

int run(int argc, char** argv) {
    tools::ToolContext context;
    CLI::App application("Shows, checks, compares and copies ZRFx files.", "zrfx");
    application.set_version_flag("--version",
                                 nuo::zrfx::ZRFxComponent::versionString().toStdString());
    application.require_subcommand(1);
    application.fallthrough();
    application.failure_message([](const CLI::App*, const CLI::Error& error) {
        return std::string("zrfx: ") + error.what() + " (zrfx --help tells more)\n";
    });
    application.footer(
        "Exit code: 0 fine, 1 findings, differences or failure, 2 wrong usage.\n"
        "zrfx COMMAND --help shows the options of a command, with examples.");
    context.addGlobalOptions(application);
    addCommands(application, context);
    try {
        application.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return application.exit(error) == 0 ? tools::ToolContext::FINE
                                            : tools::ToolContext::WRONG_USAGE;
    }
    return context.exitCode();
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const int exitCode = run(argc, argv);
        if (std::cout.flush() && std::fflush(stdout) == 0) return exitCode;
        std::fputs("zrfx: standard output: cannot be written\n", stderr);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zrfx: %s\n", error.what());
    }
    return tools::ToolContext::FAILURE;
}
