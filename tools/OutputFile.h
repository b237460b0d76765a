#pragma once

#include <string>

namespace tools {

/// A file that comes into being whole or not at all: written under a temporary name beside its
/// place, then renamed. What was there before stays until then. An interrupted process takes the
/// temporary file away; a killed one leaves it, under a name that begins with a dot. One at a time.
///
///     OutputFile output(path);
///     if (!output.prepare(&error) || !write(output.temporaryPath()) || !output.finish(&error)) ...
class OutputFile {
public:
    explicit OutputFile(std::string path) : m_path(std::move(path)) {}
    /// Removes the temporary file, unless it was renamed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Chooses the temporary name. A symbolic link is followed. False, with the reason, when the
    /// folder cannot be written, when something other than a file is in the place, or when another
    /// program is writing it.
    bool prepare(std::string* error);

    const std::string& temporaryPath() const { return m_temporaryPath; }

    /// Puts the written file into its place, with the permissions of the one that it replaces.
    bool finish(std::string* error);

private:
    std::string m_path;
    std::string m_temporaryPath;  // empty before it is prepared and after it is finished
};

}  // namespace tools
