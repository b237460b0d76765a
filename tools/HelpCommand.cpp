#include "HelpCommand.h"

#include <memory>

#include "StandardOutput.h"

namespace tools {
namespace {

// Null when there is none.
const CLI::App* commandOf(const CLI::App& application, const std::string& name) {
    const auto found = application.get_subcommands(
        [&](const CLI::App* command) { return command->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

int help(const CLI::App& application, const std::string& command) {
    const CLI::App* chosen = command.empty() ? &application : commandOf(application, command);
    const std::string name = "zrfx" + (command.empty() ? "" : " " + command);
    // The application's own help() would be that of the command that runs.
    print(chosen->get_formatter()->make_help(chosen, name, CLI::AppFormatMode::Normal));
    return ToolContext::FINE;
}

}  // namespace

void addHelpCommands(CLI::App& application, ToolContext& context, const std::string& version) {
    const auto command = std::make_shared<std::string>();
    CLI::App* helpCommand =
        context.addCommand(application, "help", "Shows the commands, or the options of one",
                           "  zrfx help\n  zrfx help import",
                           [&application, command] { return help(application, *command); });
    helpCommand->add_option("COMMAND", *command, "Name of a command")
        ->check([&application](const std::string& name) {
            return commandOf(application, name) ? "" : "there is no command '" + name + "'";
        });
    context.addCommand(application, "version", "Shows the version", "  zrfx version", [version] {
        print(version + "\n");
        return int{ToolContext::FINE};
    });
}

}  // namespace tools
