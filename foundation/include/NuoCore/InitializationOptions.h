#pragma once

namespace nuo {

/// What to do when the library finds a programming error, such as a null argument or an index out
/// of range. The error is always logged first. Until the component is initialized, the
/// library goes on.
enum class FailedAssertAction : int {
    CONTINUE = 0,   ///< Go on; the operation gives its failure value.
    EXCEPTION = 1,  ///< Throw a subclass of std::runtime_error that names the place.
    CONSOLE = 2,    ///< Write to standard error, then stop in the debugger or abort the process.
    DIALOG = 3      ///< Ask in a message box; where there is none, as CONSOLE.
};

/// Options of an Instance: a plain value.
class InitializationOptions {
public:
    FailedAssertAction failedAssertAction() const { return m_failedAssertAction; }
    void setFailedAssertAction(FailedAssertAction action) { m_failedAssertAction = action; }

private:
    FailedAssertAction m_failedAssertAction = FailedAssertAction::CONTINUE;
};

}  // namespace nuo
