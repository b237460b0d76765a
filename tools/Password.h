#pragma once

#include <optional>
#include <string>

namespace tools {

/// Where the password of a file comes from. It is never an argument, which others could see in the
/// list of processes.
struct PasswordSource {
    std::string file{};            ///< Path of a file whose first line it is; may be empty.
    const char* environment = "";  ///< Name of an environment variable.
    std::string prompt{};          ///< What a terminal is asked with; empty asks nobody.
    bool isRepeated = false;       ///< Asked twice, since a new password may be mistyped.
};

/// The password from the first source that has one. None, with the reason in `error`, when the file
/// cannot be read, the answers differ, or no source has one; an empty password is none.
std::optional<std::string> readPassword(const PasswordSource& source, std::string* error);

}  // namespace tools
