#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

#include "LogCollector.h"
#include "NuoCore/PtrRef.h"
#include "Password.h"

namespace tools {

/// Shared by all commands: the global options, the library's messages, passwords, and the exit
/// code. One a process; its commands run one after the other on one thread.
class ToolContext {
public:
    enum ExitCode : int { FINE = 0, FAILURE = 1, WRONG_USAGE = 2 };

    /// Starts the library and collects its messages from now on.
    ToolContext();

    /// Adds the options that every command takes.
    void addGlobalOptions(CLI::App& application);

    /// Adds a command whose options `run` refers to; `run` gives the exit code. `examples` end its
    /// help text.
    CLI::App* addCommand(CLI::App& application, const std::string& name,
                         const std::string& description, const std::string& examples,
                         std::function<int()> run);

    /// Reports a failure as one line on standard error: file and cause, the latter from the
    /// library's messages when it is not given. Gives FAILURE.
    int fail(const std::string& file, std::string cause = {});

    /// Whether a file has no byte, which is reported then: it would pass for an empty archive.
    bool isEmpty(const std::string& file);

    /// The password of an existing file: empty when the file is not encrypted, else from
    /// --password-file, ZRFX_PASSWORD or the terminal. False after a report.
    bool passwordFor(const std::string& file, std::string* password) {
        return passwordFor(file, {m_passwordFile, "ZRFX_PASSWORD"}, password);
    }

    /// The same from other places, of which the prompt for the terminal is not one.
    bool passwordFor(const std::string& file, PasswordSource source, std::string* password);

    /// The password to encrypt a new file with, from `passwordFile`, the environment variable or
    /// the terminal, where it is asked twice. False after a report.
    bool newPasswordFor(const std::string& file, const std::string& passwordFile,
                        const char* environment, std::string* password);

    /// The argument of --password-file; empty when it was not given.
    const std::string& passwordFile() const { return m_passwordFile; }

    LogCollector& log() { return *m_log; }

    int exitCode() const { return m_exitCode; }

private:
    const nuo::PtrRef<LogCollector> m_log;
    std::string m_passwordFile;
    int m_exitCode = FINE;
};

}  // namespace tools
