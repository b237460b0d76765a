#pragma once

#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace test {

/// What a run of the program left behind.
struct Ended {
    int exitCode;
    std::string out;
    std::string err;
};

/// Fixture of a user of the program zrfx, which is run as a process of its own.
class ToolTest : public LogCapture {
protected:
    /// Runs "zrfx <arguments>" in a folder of the test's own, with standard error no terminal.
    Ended Zrfx(const std::string& arguments);

    /// Whether the system gives terminals, which a bare container may not.
    static bool HasTerminals();

    /// Runs it on a terminal, where `answers` are typed in, and gives all that the terminal shows
    /// in the end: a bar comes and goes where the machine is slow.
    std::string OnTerminal(const std::string& arguments, const std::string& answers);

    /// Runs it and expects that it ends fine and says nothing on standard error.
    std::string Output(const std::string& arguments);

    /// Writes a small sound model with a case, as text, so that its data can be edited: two
    /// hexahedrons, a tetrahedron of a second part, two states, results of all kinds, a set.
    void WriteSound(const std::string& name);

    /// Replaces a text in an entry; a null `to` removes the entry.
    void Edit(const std::string& name, const std::string& entry, const std::string& from,
              const char* to);

    std::string Path(const std::string& name) const { return m_folder.File(name); }

private:
    TemporaryFolder m_folder;
};

}  // namespace test
