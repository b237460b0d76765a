#pragma once

#include <exception>
#include <vector>

#include "NuoCore/LogMessage.h"
#include "NuoZRFx/Error.h"

namespace nuo::python {

/// Keeps the messages that the library emits in this thread while it lives: the interpreter's lock
/// is not held then. Lives on the stack; one within another takes over until it goes.
class Messages {
public:
    Messages();
    ~Messages();
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

    void add(const LogMessage& message) noexcept;

    /// Keeps an exception of Python that a progress callback has raised in this thread, for whoever
    /// has called the operation.
    static void keepException(std::exception_ptr exception) noexcept;

    bool hasError() const { return firstError() != nullptr; }

    /// Hands the messages to the logger "zrfx" of Python. Errors of a failed operation, which are
    /// raised, come at the level DEBUG. Raises the exception of a callback.
    void passOn(bool hasFailed) const;

    /// Raises the exception of an error. Where there is none, as for blocks, the first message of
    /// an error tells the cause.
    [[noreturn]] void raise(const zrfx::Error& error) const;

private:
    const LogMessage* firstError() const;

    std::vector<LogMessage> m_messages;
    std::exception_ptr m_exception;
    Messages* m_outer;
};

/// Initializes the library and sends its messages to Python, unless the process has initialized it
/// before: its messages then go where the host wants them.
void initializeLibrary();

/// Sends the messages of the library to Python's logger "zrfx" from now on.
void logToPython();

}  // namespace nuo::python
