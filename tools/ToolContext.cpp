#include "ToolContext.h"

#include <cstdio>
#include <filesystem>
#include <utility>

#include "NuoCore/CoreComponent.h"
#include "NuoCore/Instance.h"
#include "NuoCore/LogManager.h"
#include "NuoZRFx/ZRFxComponent.h"
#include "Text.h"
#include "access/ZROZRFxAccess.h"

namespace tools {
ToolContext::ToolContext() : m_log(new LogCollector) {
    nuo::LogManager* manager = nuo::CoreComponent::logManager();
    manager->setDestination(m_log.p());
    manager->setLevel("", nuo::LL_WARNING);
    nuo::Instance instance;
    nuo::zrfx::ZRFxComponent::initialize(&instance);
}

void ToolContext::addGlobalOptions(CLI::App& application) {
    application
        .add_option("--password-file", m_passwordFile,
                    "File whose first line is the password; else it is taken from "
                    "ZRFX_PASSWORD, or asked for on a terminal")
        ->type_name("FILE");
    application.add_flag_callback(
        "-v,--verbose",
        [this] {
            m_log->setPrinting(true);
            nuo::CoreComponent::logManager()->setLevel("", nuo::LL_INFO);
        },
        "Show the library's log on standard error");
}

CLI::App* ToolContext::addCommand(CLI::App& application, const std::string& name,
                                  const std::string& description, const std::string& examples,
                                  std::function<int()> run) {
    CLI::App* command = application.add_subcommand(name, description);
    command->footer(
        "With every command:\n"
        "  --password-file FILE        First line is the password; else ZRFX_PASSWORD, else asked\n"
        "  -v,--verbose                Show the library's log on standard error\n\n"
        "Examples:\n" +
        examples);
    command->final_callback([this, run = std::move(run)] { m_exitCode = run(); });
    return command;
}

int ToolContext::fail(const std::string& file, std::string cause) {
    const std::string logged = m_log->takeCause();
    if (cause.empty()) cause = logged.empty() ? "failed" : logged;
    std::fprintf(stderr, "zrfx: %s: %s\n", printable(file).c_str(),
                 printable(withoutFileName(cause, file)).c_str());
    return FAILURE;
}

bool ToolContext::isEmpty(const std::string& file) {
    std::error_code error;
    if (std::filesystem::file_size(file, error) != 0 || error) return false;
    fail(file, "the file is empty");
    return true;
}

bool ToolContext::passwordFor(const std::string& file, PasswordSource source,
                              std::string* password) {
    password->clear();
    if (isEmpty(file)) return false;
    unstruct::ZRFxAccess access;
    unstruct::ZRFxArchiveInfo info;
    if (!access.Open(file, unstruct::ZRZipAccessMode::READ_ONLY) || !access.GetArchiveInfo(&info)) {
        fail(file);
        return false;
    }
    if (!info.encrypted) return true;
    std::string error;
    source.prompt = "Password of " + file + ": ";
    const auto given = readPassword(source, &error);
    if (!given) {
        fail(file, error);
        return false;
    }
    *password = *given;
    return true;
}

bool ToolContext::newPasswordFor(const std::string& file, const std::string& passwordFile,
                                 const char* environment, std::string* password) {
    std::string error;
    const auto given =
        readPassword({passwordFile, environment, "New password of " + file + ": ", true}, &error);
    if (!given) {
        fail(file, error);
        return false;
    }
    *password = *given;
    return true;
}

}  // namespace tools
