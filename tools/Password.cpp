#include "Password.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>

namespace tools {
namespace {

std::optional<std::string> refuse(std::string* error, const std::string& reason) {
    *error = reason;
    return std::nullopt;
}

std::optional<std::string> nonEmpty(const std::string& password, std::string* error) {
    if (password.empty()) return refuse(error, "the password is empty");
    return password;
}

std::optional<std::string> fromFile(const std::string& path, std::string* error) {
    std::ifstream file(path);
    if (!file) return refuse(error, "password file " + path + ": " + std::strerror(errno));
    std::string line;
    std::getline(file, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) return refuse(error, "password file " + path + " has no password in it");
    return line;
}

// The terminal of the process, whatever its standard streams are; typed text is not shown.
class SilentTerminal {
public:
    SilentTerminal() : m_file(open("/dev/tty", O_RDWR | O_CLOEXEC)) {
        if (m_file < 0 || tcgetattr(m_file, &m_before) != 0) return;
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        m_isSilent = tcsetattr(m_file, TCSAFLUSH, &silent) == 0;
    }
    ~SilentTerminal() {
        if (m_isSilent) tcsetattr(m_file, TCSAFLUSH, &m_before);
        if (m_file >= 0) close(m_file);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

    bool isSilent() const { return m_isSilent; }

    std::string ask(const std::string& prompt) {
        put(prompt);
        std::string line;
        char c = 0;
        while (read(m_file, &c, 1) == 1 && c != '\n') line += c;
        put("\n");
        return line;
    }

private:
    void put(const std::string& text) {
        [[maybe_unused]] const auto written = write(m_file, text.data(), text.size());
    }

    const int m_file;
    termios m_before{};
    bool m_isSilent = false;
};

}  // namespace

std::optional<std::string> readPassword(const PasswordSource& source, std::string* error) {
    if (!source.file.empty()) return fromFile(source.file, error);
    if (const char* value = std::getenv(source.environment); value && *value) return value;
    if (source.prompt.empty()) return refuse(error, "no password is given");

    SilentTerminal terminal;
    if (!terminal.isSilent()) {
        return refuse(error, std::string("a password is needed: give it by --password-file or ") +
                                 source.environment);
    }
    const std::string password = terminal.ask(source.prompt);
    if (source.isRepeated && terminal.ask("Once more: ") != password) {
        return refuse(error, "the two passwords differ");
    }
    return nonEmpty(password, error);
}

}  // namespace tools
