// zrfx: shows, checks, compares, copies and makes ZRFx files.
#include <cstdio>
#include <exception>
#include <string>

#include "CatCommand.h"
#include "CheckCommand.h"
#include "CopyCommand.h"
#include "DiffCommand.h"
#include "ExtractCommand.h"
#include "HelpCommand.h"
#include "ImportCommand.h"
#include "InfoCommand.h"
#include "ListCommand.h"
#include "MergeCommand.h"
#include "NamesCommand.h"
#include "NuoZRFx/ZRFxComponent.h"
#include "PropertiesCommand.h"
#include "StandardOutput.h"
#include "StatsCommand.h"
#include "ToolContext.h"
#include "ViewCommand.h"

namespace {

void addCommands(CLI::App& application, tools::ToolContext& context) {
    tools::addInfoCommand(application, context);
    tools::addListCommand(application, context);
    tools::addCheckCommand(application, context);
    tools::addExtractCommand(application, context);
    tools::addCatCommand(application, context);
    tools::addStatsCommand(application, context);
    tools::addViewCommand(application, context);
    tools::addDiffCommand(application, context);
    tools::addCopyCommand(application, context);
    tools::addMergeCommand(application, context);
    tools::addNamesCommand(application, context);
    tools::addImportCommand(application, context);
    tools::addPropertiesCommand(application, context);
}

// Of a wrong command line the word that is no command; CLI11 says that a command is missing.
std::string causeOf(const CLI::App& application, const CLI::Error& error) {
    if (!application.get_subcommands().empty()) return error.what();
    for (const std::string& word : application.remaining()) {
        if (!word.starts_with('-')) return "there is no command '" + word + "'";
    }
    return error.what();
}

int run(int argc, char** argv) {
    tools::ToolContext context;
    CLI::App application("Shows, checks, compares and copies ZRFx files.", "zrfx");
    const std::string version = nuo::zrfx::ZRFxComponent::versionString().toStdString();
    application.set_version_flag("--version", version);
    application.require_subcommand(1);
    application.fallthrough();
    application.failure_message([](const CLI::App* failed, const CLI::Error& error) {
        return "zrfx: " + causeOf(*failed, error) + " (zrfx --help tells more)\n";
    });
    application.footer(
        "Exit code: 0 fine, 1 findings, differences or failure, 2 wrong usage.\n"
        "zrfx COMMAND --help shows the options of a command, with examples.");
    context.addGlobalOptions(application);
    addCommands(application, context);
    tools::addHelpCommands(application, context, version);
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
        std::string cause;
        if (tools::closeStandardOutput(&cause)) return exitCode;
        std::fprintf(stderr, "zrfx: standard output: %s\n", cause.c_str());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zrfx: %s\n", error.what());
    }
    return tools::ToolContext::FAILURE;
}
